#include "component/com_object.h"

namespace KorvaneSoftware {

namespace {

constinit std::atomic<std::int32_t> g_moduleLocks{0};

}  // namespace

void LockModule() { g_moduleLocks.fetch_add(1, std::memory_order_relaxed); }
void UnlockModule() { g_moduleLocks.fetch_sub(1, std::memory_order_acq_rel); }
bool IsModuleLocked() { return g_moduleLocks.load(std::memory_order_acquire) != 0; }

HRESULT QueryInterfaceTable(void* self, std::span<const InterfaceEntry> table, const GUID& iid, void** object) {
    if (self == nullptr || table.empty()) return E_INVALIDARG;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    for (const InterfaceEntry& entry : table) {
        if (iid != IID_IUnknown && iid != *entry.iid) continue;
        IUnknown* const found = entry.cast(self);
        found->AddRef();
        *object = found;
        return S_OK;
    }
    return E_NOINTERFACE;
}

}  // namespace KorvaneSoftware
