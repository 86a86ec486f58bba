// The binary component interface without the library's headers: identifiers as bytes, methods by slot number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

namespace raw_component {

using Result = std::int32_t;

constexpr Result kOk = 0;
constexpr Result kFalse = 1;
constexpr Result kNotImplemented = static_cast<Result>(0x80004001);
constexpr Result kNoInterface = static_cast<Result>(0x80004002);
constexpr Result kPointer = static_cast<Result>(0x80004003);
constexpr Result kFail = static_cast<Result>(0x80004005);
constexpr Result kOutOfMemory = static_cast<Result>(0x8007000E);
constexpr Result kNotSetUp = static_cast<Result>(0x8007139F);
constexpr Result kInvalidArgument = static_cast<Result>(0x80070057);

/// Sixteen bytes, given as the 32 hexadecimal digits of the usual text: the first three fields in machine order.
struct Guid {
    std::uint8_t bytes[16];

    explicit Guid(const char* digits) {
        static constexpr int kOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
        for (int i = 0; i < 16; ++i)
            bytes[kOrder[i]] = static_cast<std::uint8_t>(std::stoi(std::string(digits + 2 * i, 2), nullptr, 16));
    }
};

inline const Guid kIidUnknown("0000000000000000C000000000000046");
inline const Guid kIidClassFactory("0000000100000000C000000000000046");

extern "C" {
Result DllGetClassObject(const Guid& clsid, const Guid& iid, void** object);
Result DllCanUnloadNow();
Result DllRegisterServer();
Result DllUnregisterServer();
}

/// Calls entry `slot` of the table that `object` starts with.
template <class R, class... Args>
R CallSlot(void* object, std::size_t slot, Args... args) {
    void** table;
    std::memcpy(&table, object, sizeof(table));
    return reinterpret_cast<R (*)(void*, Args...)>(table[slot])(object, args...);
}

inline Result QueryInterface(void* object, const Guid& iid, void** result) {
    return CallSlot<Result>(object, 0, &iid, result);
}
inline std::uint32_t AddRef(void* object) { return CallSlot<std::uint32_t>(object, 1); }
inline std::uint32_t Release(void* object) { return CallSlot<std::uint32_t>(object, 2); }
inline Result CreateInstance(void* factory, void* outer, const Guid& iid, void** result) {
    return CallSlot<Result>(factory, 3, outer, &iid, result);
}
inline Result LockServer(void* factory, std::int32_t lock) { return CallSlot<Result>(factory, 4, lock); }

/// One reference to an interface of a new object.
class Object {
public:
    Object(const Guid& clsid, const Guid& iid) {
        void* factory = nullptr;
        if (DllGetClassObject(clsid, kIidClassFactory, &factory) != kOk) throw std::runtime_error("no such class");
        const Result result = CreateInstance(factory, nullptr, iid, &object_);
        raw_component::Release(factory);
        if (result != kOk) throw std::runtime_error("no such interface");
    }
    Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Object& operator=(Object&&) = delete;
    ~Object() {
        if (object_ != nullptr) raw_component::Release(object_);
    }

    void* get() const { return object_; }

    template <class R, class... Args>
    R Call(std::size_t slot, Args... args) const {
        return CallSlot<R>(object_, slot, args...);
    }

private:
    void* object_ = nullptr;
};

}  // namespace raw_component
