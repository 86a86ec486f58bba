// Deinterlacing of a sequence of frames.
#ifndef PIXMORPH_CPP_DEINTERLACER_HPP
#define PIXMORPH_CPP_DEINTERLACER_HPP

#include <pixmorph/cpp/component.hpp>

namespace pixmorph {

enum class FieldOrder : std::uint32_t {
    TopFirst = PIXMORPH_TOP_FIELD_FIRST,        ///< The even lines come first in time.
    BottomFirst = PIXMORPH_BOTTOM_FIELD_FIRST,  ///< The odd lines come first in time.
};

/// The field that a deinterlaced frame keeps.
enum class Keep : std::uint32_t {
    Top = PIXMORPH_KEEP_TOP,
    Bottom = PIXMORPH_KEEP_BOTTOM,
    First = PIXMORPH_KEEP_FIRST,    ///< In time.
    Second = PIXMORPH_KEEP_SECOND,  ///< In time.
};

enum class SpatialCheck : std::uint32_t { On = 0, Off = 2 };

/// Motion-adaptive deinterlacing of a sequence of frames. Output lags one frame behind input: after the third frame the
/// second can be had. The object keeps copies of three frames and works on up to four threads of its own.
class Deinterlacer : public detail::Component<IVideoDeinterlacer, CLSID_VideoDeinterlacer> {
public:
    explicit Deinterlacer(SpatialCheck check = SpatialCheck::On) noexcept : check_(check) {
        if (Get() != nullptr) ready_ = Get()->Initialize(static_cast<std::uint32_t>(check));
    }

    /// Forgets all earlier frames.
    Status Reset() noexcept {
        if (Get() == nullptr) return detail::Refusal("Deinterlacer::Reset", Reason::OutOfMemory);
        ready_ = Get()->Initialize(static_cast<std::uint32_t>(check_));
        return detail::Ended("Deinterlacer::Reset", ready_);
    }

    /// Takes the next frame and copies it. A frame of another size or format starts a new sequence.
    /// @return true; EmptySource; Refused for a frame that cannot be taken; OutOfMemory.
    template <Picture Source>
    Status Push(const Source& frame, FieldOrder order) noexcept {
        return PushAny(frame, order);
    }
    /// Makes the frame before the last one given, with one field kept and the other rebuilt. May be called several
    /// times for one frame. The format may be another than that of the frames.
    /// @param frame  of the size of the frames, at least 16 samples wide in every plane.
    /// @return true; EmptyDestination; Pending with fewer than three frames; Refused for another size or a format that
    ///         cannot be deinterlaced.
    template <MutablePicture Destination>
    Status Pull(const Destination& frame, Keep keep = Keep::First) noexcept {
        return PullAny(frame, keep);
    }

private:
    Status PushAny(const View<>& frame, FieldOrder order) noexcept {
        constexpr const char* kMethod = "Deinterlacer::Push";
        if (Get() == nullptr || FAILED(ready_)) return detail::Refusal(kMethod, Reason::OutOfMemory);
        if (frame.IsEmpty()) return detail::Refusal(kMethod, Reason::EmptySource);
        const detail::Arguments source(frame);
        return detail::Ended(
            kMethod, Get()->SetSourceFrame(source.planes, source.strides, frame.Width(), frame.Height(), source.format,
                                           static_cast<std::uint32_t>(order)));
    }
    Status PullAny(const MutableView<>& frame, Keep keep) noexcept {
        constexpr const char* kMethod = "Deinterlacer::Pull";
        if (Get() == nullptr || FAILED(ready_)) return detail::Refusal(kMethod, Reason::OutOfMemory);
        if (frame.IsEmpty()) return detail::Refusal(kMethod, Reason::EmptyDestination);
        const detail::Arguments destination(frame);
        return detail::Ended(kMethod,
                             Get()->GetFrame(destination.planes, destination.strides, frame.Width(), frame.Height(),
                                             destination.format, static_cast<std::uint32_t>(keep)));
    }

    SpatialCheck check_;
    HRESULT ready_ = E_OUTOFMEMORY;
};

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_DEINTERLACER_HPP
