// The four entries of the library and the class objects that they hand out.
#include "component/class_table.h"
#include "component/com_object.h"

namespace KorvaneSoftware {

namespace {

/// Makes objects of one class. Class objects are part of the module and live as long as it; one that is held outside
/// keeps the module loaded.
class CClassFactory final : public IClassFactory {
public:
    constexpr CClassFactory() = default;
    explicit constexpr CClassFactory(const ComponentClass& componentClass) : class_(&componentClass) {}

    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
        AddRef();
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    ULONG PIXMORPH_CALL AddRef() override {
        const std::uint32_t before = references_.fetch_add(1, std::memory_order_relaxed);
        if (before == 0) LockModule();
        return before + 1;
    }
    ULONG PIXMORPH_CALL Release() override {
        const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) UnlockModule();
        return left;
    }
    HRESULT PIXMORPH_CALL CreateInstance(IUnknown* outer, const GUID& iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        // An outer object must ask for IUnknown: any other interface would count on the outer object from the start.
        if (outer != nullptr && iid != IID_IUnknown) return CLASS_E_NOAGGREGATION;
        return class_->create(outer, iid, object);
    }
    HRESULT PIXMORPH_CALL LockServer(BOOL lock) override {
        if (lock != 0)
            LockModule();
        else
            UnlockModule();
        return S_OK;
    }

    const ComponentClass& Class() const { return *class_; }

private:
    const ComponentClass* class_ = nullptr;
    std::atomic<std::uint32_t> references_{0};
};

/// One cached class object per class.
class ClassFactories {
public:
    ClassFactories() {
        for (const ComponentClass& componentClass : ComponentClasses())
            new (&factories_[count_++]) CClassFactory(componentClass);
    }
    CClassFactory* Find(const GUID& clsid) {
        for (std::size_t i = 0; i < count_; ++i)
            if (*factories_[i].Class().clsid == clsid) return &factories_[i];
        return nullptr;
    }

private:
    CClassFactory factories_[16];
    std::size_t count_ = 0;
};

}  // namespace

}  // namespace KorvaneSoftware

PIXMORPH_API HRESULT PIXMORPH_CALL DllGetClassObject(const GUID& clsid, const GUID& iid, void** object) {
    using namespace KorvaneSoftware;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return ComponentCall([&] {
        static ClassFactories factories;
        CClassFactory* const factory = factories.Find(clsid);
        return factory != nullptr ? factory->QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
    });
}

PIXMORPH_API HRESULT PIXMORPH_CALL DllCanUnloadNow() { return KorvaneSoftware::IsModuleLocked() ? S_FALSE : S_OK; }

// This platform has no registry of classes: there is nothing to enter and nothing to remove.
PIXMORPH_API HRESULT PIXMORPH_CALL DllRegisterServer() { return E_NOTIMPL; }
PIXMORPH_API HRESULT PIXMORPH_CALL DllUnregisterServer() { return E_NOTIMPL; }
