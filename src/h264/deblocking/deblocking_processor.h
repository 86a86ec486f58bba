// The row jobs of the loop filter.
#pragma once

#include "h264/deblocking/deblocker.h"
#include "h264/deblocking/deblocking_template.h"
#include "h264/deblocking/deblocking_template_mbaff.h"
#include "h264/processor.h"

namespace KorvaneSoftware {

/// What the processors have in common: the cursor, and the operations by slice type. `Template` filters the macroblock
/// or the pair at the cursor.
template <class Template>
class TH264DeblockingRows : public Template, public IH264DeblockingProcessor {
public:
    void SetCursor(const SliceCursor& cursor) final { this->cursor_ = cursor; }
    const SliceCursor& GetCursor() const final { return this->cursor_; }
    void FilterRowI() final { FilterRow(0); }
    void FilterRowP() final { FilterRow(1); }
    void FilterRowB() final { FilterRow(2); }

private:
    /// Filters from the cursor's place to the end of the row or of the slice, and leaves the cursor at the next row.
    void FilterRow(unsigned lists) {
        SliceCursor& cursor = this->cursor_;
        this->BeginRow(lists);
        for (; cursor.mbX < cursor.widthInMbs && !cursor.AtEnd(); Step()) this->FilterAtCursor();
        StartNextRow(cursor);
    }

    void Step() {
        SliceCursor& cursor = this->cursor_;
        ++cursor.record;
        ++cursor.position;
        ++cursor.mbX;
        cursor.planes[0] += 16 * Template::kSampleBytes;
        cursor.planes[1] += 8 * Template::kSampleBytes;
        cursor.planes[2] += 8 * Template::kSampleBytes;
    }
};

/// Frames without MBAFF, and field pictures.
template <unsigned P, unsigned S, unsigned C, class Sample>
class TH264DeblockingProcessor final
    : public TH264DeblockingRows<TH264DeblockingTemplate<P, S, C, Sample, CH264Deblocker>> {};

/// MBAFF frames.
template <unsigned P, unsigned C, class Sample>
class TH264DeblockingProcessorMBAFF final : public TH264DeblockingRows<TH264DeblockingTemplateMBAFF<P, C, Sample>> {};

}  // namespace KorvaneSoftware
