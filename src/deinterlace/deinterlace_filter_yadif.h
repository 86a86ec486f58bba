// The frame deinterlacer: a history of three frames, and a team of threads that makes the output band by band. Output
// lags one frame behind input. It cannot be flushed: the last frame given is never shown.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "deinterlace/inward_video_deinterlacer.h"
#include "deinterlace/plane_filter.h"
#include "foundation/aligned_memory.h"
#include "foundation/worker_team.h"

namespace KorvaneSoftware {

/// Status of GetFrame while the history is short of three frames.
constexpr Status kFramePending = 1;

class CDeinterlaceFilterYADIF final : public IVideoDeinterlacer {
public:
    static constexpr unsigned kMostThreads = 4;

    Status QueryInterface(const GUID& iid, void** object) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;

    /// @return 0; IMG_E_UNSUPPORTED for a mode above 3, with nothing changed; otherwise what the threads gave.
    Status Initialize(const DeinterlacerSettings& settings) override;
    /// Copies the frame into the history, converted to UYVY where its format is not one that can be filtered. A frame
    /// of another size or format starts the history anew, even if the frame itself is then refused.
    /// @return 0; IMG_E_BAD_STRUCTURE for a bad structure; IMG_E_NO_MEMORY; what the copy or the conversion gave.
    Status SetSourceFrame(const ConstImageDescriptor& source, std::uint32_t structure) override;
    /// @return 0; IMG_E_NULL_ARG; IMG_E_BAD_FORMAT when frames and image disagree in format or size; IMG_E_BAD_SIZE for
    ///         a band outside the image or a plane narrower than 16 samples; IMG_E_BAD_ALIGNMENT; IMG_E_BAD_STRUCTURE
    ///         for a bad structure; IMG_E_UNSUPPORTED for a format without a filter.
    Status FilterBand(const ImageDescriptor& image, std::uint32_t parity, const ImageRect& band) override;
    /// @return 0; kFramePending; IMG_E_BAD_SIZE for a size other than the history's; what FilterBand or the conversion
    ///         gave.
    Status GetFrame(const ImageDescriptor& image, std::uint32_t fieldIntact) override;

private:
    struct FrameSlot {
        ImageDescriptor image;
        AlignedBuffer buffer;
    };
    using PlaneJobs = std::array<PlaneFilterJob, 3>;

    ~CDeinterlaceFilterYADIF() override = default;

    FrameSlot& SlotOf(std::uint64_t frame) { return ring_[frame % ring_.size()]; }
    Status CopyFrame(const ImageDescriptor& dst, const ConstImageDescriptor& source);
    Status RunBands(const ImageDescriptor& image, std::uint32_t parity);
    Status MakePlaneJobs(const ImageDescriptor& image, std::uint32_t parity, const ImageRect& band, PlaneJobs& jobs,
                         std::size_t& count);

    std::uint32_t references_ = 1;
    bool spatialCheck_ = false;
    std::array<FrameSlot, 3> ring_;
    std::uint32_t structure_ = 0;  // Of the last source frame.
    FrameSlot temporary_;          // Output in a format other than the ring's passes through here.
    std::uint64_t frameCount_ = 0;
    WorkerTeam team_;  // Last: its threads stop before anything they work on goes.
};

/// Bands of a picture of `height` lines for `threads` threads, from the top: whole line pairs, and multiples of four
/// lines so that planes of half height keep whole pairs as well.
struct BandTable {
    std::array<ImageRect, CDeinterlaceFilterYADIF::kMostThreads> bands;
    unsigned count;
};
BandTable LayOutBands(std::uint32_t width, std::uint32_t height, unsigned threads);

}  // namespace KorvaneSoftware
