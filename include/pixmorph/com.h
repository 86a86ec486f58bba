// The binary component model that Pixmorph's surface is built on: identifiers, result codes, IUnknown, IClassFactory
// and the four exports of the library, plus a smart pointer that makes correct reference counting the easy way.
//
// On Windows these types come from the platform's own headers. Everywhere else this header supplies the same ones with
// the same layout: an interface is a table of function pointers with QueryInterface, AddRef and Release in slots 0 to 2
// and no destructor, called with the platform's C++ convention.
//
// The header compiles alone as C++17 and C++20 and needs nothing but the standard library.
#ifndef PIXMORPH_COM_H
#define PIXMORPH_COM_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#if defined(_WIN32)

#include <unknwn.h>

#define PIXMORPH_CALL __stdcall
#if defined(PIXMORPH_BUILDS_LIBRARY)
#define PIXMORPH_API extern "C" __declspec(dllexport)
#else
#define PIXMORPH_API extern "C" __declspec(dllimport)
#endif

#else

#define PIXMORPH_CALL
#define PIXMORPH_API extern "C" __attribute__((visibility("default")))

/// A class or interface identifier: 16 bytes, the first three fields in the machine's byte order.
/// {2ACC22E9-B881-4873-BC39-DE01DD49185E} is `{0x2ACC22E9, 0xB881, 0x4873, {0xBC, 0x39, 0xDE, 0x01, ...}}`.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(GUID) == 16, "GUID is part of the binary interface");

constexpr bool operator==(const GUID& a, const GUID& b) noexcept {
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i]) return false;
    return true;
}
constexpr bool operator!=(const GUID& a, const GUID& b) noexcept { return !(a == b); }

/// Outcome of every component method: negative values are failures. Its name and the two below are those of the Windows
/// headers, where the types are `long`, `unsigned long` and `int`, 32 bits wide there.
using HRESULT = std::int32_t;
using ULONG = std::uint32_t;
using BOOL = std::int32_t;

inline constexpr HRESULT S_OK = 0;     ///< The method did what it says.
inline constexpr HRESULT S_FALSE = 1;  ///< "No", from DllCanUnloadNow.
inline constexpr HRESULT E_PENDING =
    static_cast<HRESULT>(0x8000000A);  ///< More input is needed before there is a result.
inline constexpr HRESULT E_NOTIMPL =
    static_cast<HRESULT>(0x80004001);  ///< A reserved slot, or a call before Initialize.
inline constexpr HRESULT E_NOINTERFACE =
    static_cast<HRESULT>(0x80004002);                                   ///< The object lacks the interface asked for.
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);  ///< A result pointer is null.
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);     ///< The engine refused or failed.
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);   ///< The object is in no state for the call.
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);  ///< Memory could not be had.
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);   ///< An argument is out of range or unknown.
inline constexpr HRESULT E_NOT_VALID_STATE = static_cast<HRESULT>(0x8007139F);  ///< What the call needs is not set up.
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);  ///< Aggregation asked for wrongly.
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE =
    static_cast<HRESULT>(0x80040111);  ///< The class identifier is unknown.

constexpr bool SUCCEEDED(HRESULT result) noexcept { return result >= 0; }
constexpr bool FAILED(HRESULT result) noexcept { return result < 0; }

/// Frees what a method allocated for its caller. Here that is `free`, for callers in any language.
inline void CoTaskMemFree(void* memory) noexcept { std::free(memory); }

inline constexpr GUID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr GUID IID_IClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

#if defined(__GNUC__)
// Interfaces have no destructor by contract: one would take slots of the table. Objects end by Release alone.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Root of every interface. Reference counts are atomic; an object may be handed from thread to thread.
struct IUnknown {
    /// Asks the object for another of its interfaces.
    /// @param iid     identifier of the interface.
    /// @param object  receives the interface with a reference added, or null.
    /// @return S_OK; E_NOINTERFACE; E_POINTER when `object` is null.
    virtual HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) = 0;
    /// Adds a reference. @return the new count, for diagnostics only.
    virtual ULONG PIXMORPH_CALL AddRef() = 0;
    /// Drops a reference; the object ends with its last one. @return the new count, for diagnostics only.
    virtual ULONG PIXMORPH_CALL Release() = 0;
};

/// Makes objects of one class; obtained from DllGetClassObject.
struct IClassFactory : IUnknown {
    /// Creates an object.
    /// @param outer   null, or the controlling object of an aggregate; `iid` must then be IID_IUnknown.
    /// @param iid     interface wanted.
    /// @param object  receives it, or null.
    /// @return S_OK; E_NOINTERFACE; E_POINTER for a null `object`; CLASS_E_NOAGGREGATION when `outer` is given with
    ///         another interface than IUnknown; E_OUTOFMEMORY.
    [[nodiscard]] virtual HRESULT PIXMORPH_CALL CreateInstance(IUnknown* outer, const GUID& iid, void** object) = 0;
    /// Keeps the module loaded (`lock` not 0) or lets go again (0). @return S_OK.
    virtual HRESULT PIXMORPH_CALL LockServer(BOOL lock) = 0;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// Hands out the class object of a class.
/// @param clsid   one of the CLSID_ constants of pixmorph.h.
/// @param iid     IID_IClassFactory or IID_IUnknown.
/// @param object  receives the class object with a reference added, or null.
/// @return S_OK; CLASS_E_CLASSNOTAVAILABLE; E_NOINTERFACE; E_POINTER when `object` is null.
PIXMORPH_API HRESULT PIXMORPH_CALL DllGetClassObject(const GUID& clsid, const GUID& iid, void** object);
/// @return S_OK when no object, no held class object and no lock is alive, so that the library may be unloaded; S_FALSE
///         otherwise.
PIXMORPH_API HRESULT PIXMORPH_CALL DllCanUnloadNow();
/// Enters the classes in the platform's registry. @return E_NOTIMPL on a platform that has no registry.
PIXMORPH_API HRESULT PIXMORPH_CALL DllRegisterServer();
/// Removes what DllRegisterServer entered. @return E_NOTIMPL on a platform that has no registry.
PIXMORPH_API HRESULT PIXMORPH_CALL DllUnregisterServer();

#endif  // !_WIN32

namespace KorvaneSoftware {

/// Identifier of an interface type: `InterfaceId<ITitleMixer4>::value`. pixmorph.h specialises it for each interface.
template <class Interface>
struct InterfaceId;
template <>
struct InterfaceId<IUnknown> {
    static constexpr GUID value = IID_IUnknown;
};
template <>
struct InterfaceId<IClassFactory> {
    static constexpr GUID value = IID_IClassFactory;
};

/// Owns one reference to an interface. Copies add a reference, moves do not, destruction releases.
template <class Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    /// Shares `object`: a reference is added.
    explicit ComPtr(Interface* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~ComPtr() { Reset(); }

    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    Interface* Get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    Interface& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    void Reset() noexcept {
        if (Interface* old = std::exchange(object_, nullptr)) old->Release();
    }
    /// Gives the reference away without releasing it.
    [[nodiscard]] Interface* Detach() noexcept { return std::exchange(object_, nullptr); }
    /// Takes over a reference that the caller already owns.
    void Attach(Interface* object) noexcept {
        Reset();
        object_ = object;
    }
    /// Address for an out parameter; what was held is released first.
    void** Put() noexcept {
        Reset();
        return reinterpret_cast<void**>(&object_);
    }
    /// Asks the held object for another interface. @return as IUnknown::QueryInterface; E_POINTER when empty.
    template <class Other>
    [[nodiscard]] HRESULT As(ComPtr<Other>& result) const noexcept {
        result.Reset();
        if (object_ == nullptr) return E_POINTER;
        return object_->QueryInterface(InterfaceId<Other>::value, result.Put());
    }

private:
    Interface* object_ = nullptr;
};

#if !defined(_WIN32)

/// Creates an object of class `clsid` and returns its interface `Interface`.
/// @param clsid   one of the CLSID_ constants of pixmorph.h.
/// @param result  receives the object; emptied on failure.
/// @return S_OK; CLASS_E_CLASSNOTAVAILABLE for an unknown class; E_NOINTERFACE when the class lacks the interface;
///         E_OUTOFMEMORY.
template <class Interface>
[[nodiscard]] HRESULT CreateInstance(const GUID& clsid, ComPtr<Interface>& result) noexcept {
    result.Reset();
    ComPtr<IClassFactory> factory;
    const HRESULT status = DllGetClassObject(clsid, IID_IClassFactory, factory.Put());
    if (FAILED(status)) return status;
    return factory->CreateInstance(nullptr, InterfaceId<Interface>::value, result.Put());
}

#endif

}  // namespace KorvaneSoftware

#endif  // PIXMORPH_COM_H
