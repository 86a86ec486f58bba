// Result codes of everything below the component surface. The surface turns any non-zero status into an HRESULT.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

using Status = std::int32_t;

constexpr Status IMG_OK = 0;
constexpr Status IMG_DATA_ENDED = 1;        ///< Compressed data ended before the frame was complete.
constexpr Status IMG_BUFFER_TOO_SMALL = 2;  ///< A buffer is smaller than the picture or the coded frame.
constexpr Status IMG_E_FAILED = -1;         ///< A system call failed, or strides contradict each other.
constexpr Status IMG_E_NULL_ARG = -2;       ///< A required descriptor, pointer or plane is null.
constexpr Status IMG_E_BAD_FORMAT = -3;     ///< Format unknown, or not one the operation was made for.
constexpr Status IMG_E_BAD_SIZE = -4;       ///< Sizes that contradict each other, a rectangle outside the picture.
constexpr Status IMG_E_BAD_ALIGNMENT = -5;  ///< A size or position is no multiple of what the format needs.
constexpr Status IMG_E_EXCEPTION = -6;      ///< Something was thrown and caught on the way through an engine.
constexpr Status IMG_E_NO_MEMORY = -7;      ///< A temporary buffer could not be had.
constexpr Status IMG_E_UNSUPPORTED = -8;    ///< The format pair is known but no conversion exists.
constexpr Status IMG_E_NO_HANDLE = -9;      ///< The wait object does not exist.
constexpr Status IMG_E_BAD_STRUCTURE = -9;  ///< Not a field structure. The deinterlacer's, in a numbering of its own.
constexpr Status IMG_E_NOT_READY = -10;     ///< An engine object has no operation to call.
constexpr Status IMG_E_PAST_END = -11;      ///< A bit reader stands past the end of its data.
constexpr Status IMG_E_NO_PATH = -13;       ///< As UNSUPPORTED, from older dispatch rows and the resize engine; no such
                                            ///< interface.
constexpr Status IMG_E_MALFORMED = -17;     ///< The compressed data is malformed.

/// Runs `body` and returns its result; anything thrown becomes `onException`. Every engine entry and every component
/// method is wrapped in it: no exception leaves the library.
template <class Result, class Body>
Result Guarded(Result onException, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return onException;
    }
}

/// The same for engine entries: anything thrown becomes IMG_E_EXCEPTION.
template <class Body>
Status Guarded(Body&& body) noexcept {
    return Guarded<Status>(IMG_E_EXCEPTION, body);
}

}  // namespace KorvaneSoftware
