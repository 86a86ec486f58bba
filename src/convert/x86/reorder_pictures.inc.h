// Pictures of the reordering kernels: which lines go together, and how they reach memory.
#pragma once

#include "convert/x86/reorder_forms.h"
#include "convert/x86/reorder_kernels.inc.h"
#include "foundation/store_policy.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

/// The lines of the step that starts at `row`.
template <class Kernel>
inline void SourceLines(const ConstImageDescriptor& src, std::int64_t row, ReadLine (&lines)[Kernel::kLines]) {
    const std::int64_t lastChromaRow = static_cast<std::int64_t>(src.height) / 2 - 1;
    for (int i = 0; i < Kernel::kLines; ++i) {
        const std::int64_t chromaRow = row / 2 + i < lastChromaRow ? row / 2 + i : lastChromaRow;
        lines[i] = LineOfPicture(src, row + i, Kernel::kSrcIs420 ? chromaRow : row + i);
    }
}
template <class Kernel>
inline void DestinationLines(const ImageDescriptor& dst, std::int64_t row, WriteLine (&lines)[Kernel::kLines]) {
    for (int i = 0; i < Kernel::kLines; ++i)
        lines[i] = LineOfPicture(dst, row + i, Kernel::kDstIs420 ? row / 2 : row + i);
}

template <class Kernel, class Out>
void ConvertPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; row += Kernel::kLines) {
        ReadLine from[Kernel::kLines];
        WriteLine to[Kernel::kLines];
        SourceLines<Kernel>(src, row, from);
        DestinationLines<Kernel>(dst, row, to);
        Kernel::template Convert<Out>(to, from, src.width);
    }
}

/// Less than a cache line.
inline void CopyShort(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
    std::size_t i = 0;
    for (; i + 8 <= bytes; i += 8) __builtin_memcpy(to + i, from + i, 8);
    for (; i < bytes; ++i) to[i] = from[i];
}

/// The source lines of a step, asked for one cache line at a time while the step before is leaving: that keeps the
/// memory busy while nothing is read.
template <class Kernel, class Src>
class SourceAhead {
public:
    SourceAhead(const ConstImageDescriptor& src, std::int64_t row) {
        if (row >= src.height) return;
        ReadLine lines[Kernel::kLines];
        SourceLines<Kernel>(src, row, lines);
        for (int plane = 0; plane < 3; ++plane) {
            const std::size_t bytes = Src::RowBytes(plane, src.width);
            for (int i = 0; i < Kernel::kLines && bytes > 0; ++i) runs_[count_++] = {lines[i].plane[plane], bytes};
        }
    }

    void Ask() {
        if (index_ == count_) return;
        __builtin_prefetch(runs_[index_].first + done_);
        done_ += kCacheLine;
        if (done_ < runs_[index_].bytes) return;
        done_ = 0;
        ++index_;
    }

private:
    struct Run {
        const std::uint8_t* first;
        std::size_t bytes;
    };
    Run runs_[3 * Kernel::kLines];
    int count_ = 0;
    int index_ = 0;
    std::size_t done_ = 0;
};

/// Copies a finished line of at least a cache line to its place.
template <class Ahead>
inline void StreamLine(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, Ahead& ahead) {
    std::size_t i = (kCacheLine - reinterpret_cast<std::uintptr_t>(to) % kCacheLine) % kCacheLine;
    CopyShort(to, from, i);
    for (; i + kCacheLine <= bytes; i += kCacheLine) {
        ahead.Ask();
        for (std::size_t k = 0; k < kCacheLine; k += kVecBytes) Stream(to + i + k, Load(from + i + k));
    }
    CopyShort(to + i, from + i, bytes - i);
}

/// Pixels of the longest line that is streamed to any address; Y16A takes three bytes for each.
constexpr std::size_t kLongestBufferedLine = 4096;
constexpr std::size_t kLineBufferBytes = 3 * kLongestBufferedLine;

/// Streams to planes that lie at any address: lines are made in a buffer that stays in the first-level cache, and leave
/// it whole cache lines at a time.
template <class Kernel, class Dst, class Src>
void ConvertPictureBuffered(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    alignas(kCacheLine) std::uint8_t buffer[Kernel::kLines * kLineBufferBytes];
    WriteLine made[Kernel::kLines];
    std::uint8_t* place = buffer;
    for (WriteLine& line : made) {
        for (int plane = 0; plane < 3; ++plane) {
            line.plane[plane] = place;
            place += Dst::RowBytes(plane, kLongestBufferedLine);
        }
    }
    for (std::int64_t row = 0; row < src.height; row += Kernel::kLines) {
        ReadLine from[Kernel::kLines];
        WriteLine to[Kernel::kLines];
        SourceLines<Kernel>(src, row, from);
        DestinationLines<Kernel>(dst, row, to);
        Kernel::template Convert<CachedStores>(made, from, src.width);
        SourceAhead<Kernel, Src> ahead(src, row + Kernel::kLines);
        for (int plane = 0; plane < 3; ++plane) {
            const std::size_t bytes = Dst::RowBytes(plane, src.width);
            const int lines = plane > 0 && Kernel::kDstIs420 ? 1 : Kernel::kLines;
            for (int i = 0; i < lines && bytes > 0; ++i)
                StreamLine(to[i].plane[plane], made[i].plane[plane], bytes, ahead);
        }
    }
}

/// Whether every line of every plane starts at a cache line.
template <class Dst>
inline bool StartsAtCacheLines(const ImageDescriptor& desc) {
    std::uint64_t bits = 0;
    for (int plane = 0; plane < 3; ++plane)
        if (Dst::RowBytes(plane, desc.width) > 0)
            bits |=
                reinterpret_cast<std::uintptr_t>(desc.planes[plane]) | static_cast<std::uint64_t>(desc.strides[plane]);
    return bits % kCacheLine == 0;
}

template <class Kernel, class Dst>
inline bool IsLarge(const ImageDescriptor& dst) {
    std::size_t bytes = 0;
    for (int plane = 0; plane < 3; ++plane) {
        const std::size_t planeBytes = Dst::RowBytes(plane, dst.width) * dst.height;
        bytes += plane > 0 && Kernel::kDstIs420 ? planeBytes / 2 : planeBytes;
    }
    return StoresPastCache(bytes, CacheShare::Half);
}

/// A picture that is narrower than the kernel's step goes to `narrowPicture`.
template <template <class, class> class Family, class Dst, class Src>
void Reorder(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    using Kernel = Family<Dst, Src>;
    if (src.width < Kernel::template kStep<CachedStores>) return narrowPicture(dst, src);
    // A last step that overlapped the one before would pull streamed lines back into the cache.
    const bool canStream = src.width % Kernel::template kStep<StreamingStores> == 0 && StartsAtCacheLines<Dst>(dst);
    // Every line of a buffered picture is a cache line at least.
    const bool canBuffer = src.width >= 2 * kCacheLine && src.width <= kLongestBufferedLine;
    if (!IsLarge<Kernel, Dst>(dst) || !(canStream || canBuffer)) {
        ConvertPicture<Kernel, CachedStores>(dst, src);
        return;
    }
    if (canStream)
        ConvertPicture<Kernel, StreamingStores>(dst, src);
    else
        ConvertPictureBuffered<Kernel, Dst, Src>(dst, src);
    StreamFence();
}

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
