// How a call ended, and why.
#ifndef PIXMORPH_CPP_STATUS_HPP
#define PIXMORPH_CPP_STATUS_HPP

#include <pixmorph/pixmorph.h>

#include <cstdint>

namespace pixmorph {

/// Why a call did not do what it was asked. The component's own result is kept beside it.
enum class Reason : std::uint8_t {
    None,              ///< It did.
    EmptySource,       ///< The source view is empty.
    EmptyDestination,  ///< The destination view is empty.
    SizesDiffer,       ///< The two pictures have different sizes.
    UnevenSize,        ///< The size is no multiple of what the formats need.
    UnknownFormat,     ///< A format known at run time is none, or none that the call takes.
    NoPath,            ///< There is no way between the two formats.
    SeparatePlanes,    ///< The planes do not follow each other in memory as the call needs them.
    UnequalStrides,    ///< The planes of the source have different strides, and the call takes one.
    OutOfRange,        ///< An argument is out of its range.
    BufferTooSmall,    ///< The buffer does not hold the result.
    Pending,           ///< More frames are needed before there is a result.
    NotSetUp,          ///< The object has no codec: setting it up failed.
    NoSuchCodec,       ///< There is no such encoder or decoder.
    Refused,           ///< The engine refused or failed.
    OutOfMemory,       ///< Memory could not be had, or the component could not be made.
};

constexpr const char* Describe(Reason reason) noexcept {
    switch (reason) {
        case Reason::None:
            return "done";
        case Reason::EmptySource:
            return "the source view is empty: its memory does not hold its size";
        case Reason::EmptyDestination:
            return "the destination view is empty: its memory does not hold its size";
        case Reason::SizesDiffer:
            return "source and destination have different sizes";
        case Reason::UnevenSize:
            return "the size is no multiple of what the formats need";
        case Reason::UnknownFormat:
            return "the format is none that the call takes";
        case Reason::NoPath:
            return "there is no path between the formats";
        case Reason::SeparatePlanes:
            return "the planes must follow each other in memory";
        case Reason::UnequalStrides:
            return "the source planes must have one stride";
        case Reason::OutOfRange:
            return "an argument is out of its range";
        case Reason::BufferTooSmall:
            return "the buffer does not hold the result";
        case Reason::Pending:
            return "more frames are needed first";
        case Reason::NotSetUp:
            return "no codec is set up";
        case Reason::NoSuchCodec:
            return "there is no such encoder or decoder";
        case Reason::Refused:
            return "the engine refused or failed";
        case Reason::OutOfMemory:
            return "memory could not be had";
    }
    return "unknown";
}

/// Outcome of a call: true when it did what it says. Not to be dropped.
class [[nodiscard]] Status {
public:
    constexpr Status() noexcept = default;
    constexpr Status(const char* method, HRESULT result, Reason reason) noexcept
        : method_(method), result_(result), reason_(reason) {}

    constexpr explicit operator bool() const noexcept { return reason_ == Reason::None; }
    constexpr Reason Why() const noexcept { return reason_; }
    /// The component's result; its own code where the call was refused before it reached the component.
    constexpr HRESULT Result() const noexcept { return result_; }
    /// The method, "Converter::Convert".
    constexpr const char* Method() const noexcept { return method_; }
    /// A sentence for a log; of static storage.
    constexpr const char* Message() const noexcept { return Describe(reason_); }

private:
    const char* method_ = "";
    HRESULT result_ = S_OK;
    Reason reason_ = Reason::None;
};

/// A value, or why there is none.
template <class Value>
class [[nodiscard]] Result {
public:
    constexpr Result(Value value) noexcept : value_(value) {}
    constexpr Result(const Status& failure) noexcept : status_(failure) {}

    constexpr explicit operator bool() const noexcept { return static_cast<bool>(status_); }
    /// The value; a default one after a failure.
    constexpr const Value& operator*() const noexcept { return value_; }
    constexpr const Value* operator->() const noexcept { return &value_; }
    constexpr const Status& Outcome() const noexcept { return status_; }

private:
    Value value_{};
    Status status_;
};

namespace detail {

// Results of a component where the call itself knows no better reason.
constexpr Reason ReasonOf(HRESULT result) noexcept {
    if (result >= 0) return Reason::None;
    if (result == E_OUTOFMEMORY) return Reason::OutOfMemory;
    if (result == E_PENDING) return Reason::Pending;
    if (result == E_NOT_VALID_STATE) return Reason::NotSetUp;
    if (result == E_INVALIDARG) return Reason::OutOfRange;
    return Reason::Refused;
}

constexpr Status Ended(const char* method, HRESULT result) noexcept { return {method, result, ReasonOf(result)}; }
constexpr Status Refusal(const char* method, Reason reason) noexcept { return {method, E_INVALIDARG, reason}; }

/// Makes a component; leaves `object` empty when there is none.
template <class Interface>
void Create(const GUID& clsid, KorvaneSoftware::ComPtr<Interface>& object) noexcept {
#if defined(_WIN32)
    (void)CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, KorvaneSoftware::InterfaceId<Interface>::value,
                           object.Put());
#else
    (void)KorvaneSoftware::CreateInstance(clsid, object);
#endif
}

}  // namespace detail

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_STATUS_HPP
