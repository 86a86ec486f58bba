// What every component object shares: the count of live objects and locks, the table of interfaces that queries search,
// and the three forms of an object: plain, aggregated, and the contained part of an aggregated one.
//
// A component class derives from its interfaces and from CComponent, implements their methods, and states its table:
//
//   class CCopyMemory : public CComponent, public ICopyMemory {
//   public:
//       static std::span<const InterfaceEntry> Interfaces() {
//           static constexpr InterfaceEntry kEntries[] = {Entry<CCopyMemory, ICopyMemory>()};
//           return kEntries;
//       }
//       HRESULT CopyMemoryFast(...) override;
//   };
#pragma once

#include <pixmorph/pixmorph.h>
#include <atomic>
#include <cstdint>
#include <new>
#include <span>

#include "foundation/status.h"

namespace KorvaneSoftware {

/// Counts a live object or a lock on the module.
void LockModule();
void UnlockModule();
/// Whether anything is alive.
bool IsModuleLocked();

/// One interface of a class: its identifier and the cast from the object to it.
struct InterfaceEntry {
    const GUID* iid;
    IUnknown* (*cast)(void* self);
};

/// The table row for interface `Interface` of class `Class`.
template <class Class, class Interface>
constexpr InterfaceEntry Entry() {
    return {&InterfaceId<Interface>::value,
            [](void* self) -> IUnknown* { return static_cast<Interface*>(static_cast<Class*>(self)); }};
}

/// Searches the table in order. IUnknown gives the first entry.
/// @return S_OK with a reference added; E_NOINTERFACE with a null result; E_INVALIDARG for a null object or an empty
///         table; E_POINTER for a null result pointer.
HRESULT QueryInterfaceTable(void* self, std::span<const InterfaceEntry> table, const GUID& iid, void** object);

/// Engine status to component result: a caller learns no detail.
constexpr HRESULT ResultOf(Status status) { return status == IMG_OK ? S_OK : E_FAIL; }

/// Runs the body of a component method; anything thrown becomes E_FAIL.
template <class Body>
HRESULT ComponentCall(Body&& body) noexcept {
    return Guarded<HRESULT>(E_FAIL, body);
}

/// Base of component classes.
class CComponent {
public:
    CComponent() { LockModule(); }
    CComponent(const CComponent&) = delete;
    CComponent& operator=(const CComponent&) = delete;

    /// Last step of construction, for what can fail. A failure ends the object and is what the creation returns.
    HRESULT FinalConstruct() { return S_OK; }

protected:
    ~CComponent() { UnlockModule(); }
};

/// An object that counts its own references.
template <class Class>
class TComObject final : public Class {
public:
    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        return QueryInterfaceTable(static_cast<Class*>(this), Class::Interfaces(), iid, object);
    }
    ULONG PIXMORPH_CALL AddRef() override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG PIXMORPH_CALL Release() override {
        const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

private:
    std::atomic<std::uint32_t> references_{1};
};

// Outer objects may be written in any language. They have a table of methods but no type information of this
// language's, which the sanitizers would look for.
#if defined(__GNUC__)
#define PIXMORPH_CALLS_FOREIGN __attribute__((no_sanitize("vptr")))
#else
#define PIXMORPH_CALLS_FOREIGN
#endif

/// The part of an aggregated object that carries the interfaces: its counting and its queries are the outer object's.
template <class Class>
class TContainedObject final : public Class {
public:
    explicit TContainedObject(IUnknown* outer) : outer_(outer) {}
    PIXMORPH_CALLS_FOREIGN HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        return outer_->QueryInterface(iid, object);
    }
    PIXMORPH_CALLS_FOREIGN ULONG PIXMORPH_CALL AddRef() override { return outer_->AddRef(); }
    PIXMORPH_CALLS_FOREIGN ULONG PIXMORPH_CALL Release() override { return outer_->Release(); }

private:
    IUnknown* outer_;  // Not counted: the outer object owns this one.
};

/// What an outer object holds of an aggregated one: the only IUnknown with a count of its own.
template <class Class>
class TAggregatedObject final : public IUnknown {
public:
    explicit TAggregatedObject(IUnknown* outer) : contained_(outer) {}

    HRESULT FinalConstruct() { return contained_.FinalConstruct(); }

    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (iid == IID_IUnknown) {
            AddRef();
            *object = static_cast<IUnknown*>(this);
            return S_OK;
        }
        return QueryInterfaceTable(static_cast<Class*>(&contained_), Class::Interfaces(), iid, object);
    }
    ULONG PIXMORPH_CALL AddRef() override { return references_.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG PIXMORPH_CALL Release() override {
        const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

private:
    std::atomic<std::uint32_t> references_{1};
    TContainedObject<Class> contained_;
};

/// Finishes a new object, hands out the interface asked for and drops the creator's reference.
template <class Object>
HRESULT FinishCreation(Object* object, const GUID& iid, void** result) {
    if (object == nullptr) return E_OUTOFMEMORY;
    HRESULT status = object->FinalConstruct();
    if (SUCCEEDED(status)) status = object->QueryInterface(iid, result);
    object->Release();
    return status;
}

/// Creates an object of a component class, alone or as part of `outer`.
template <class Class>
HRESULT CreateComponent(IUnknown* outer, const GUID& iid, void** result) {
    return Guarded<HRESULT>(E_OUTOFMEMORY, [&] {
        if (outer != nullptr) return FinishCreation(new (std::nothrow) TAggregatedObject<Class>(outer), iid, result);
        return FinishCreation(new (std::nothrow) TComObject<Class>, iid, result);
    });
}

}  // namespace KorvaneSoftware
