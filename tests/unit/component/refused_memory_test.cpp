// Objects that cannot have the memory that they are made of: each allocation of each class's construction is refused in
// turn. A creation that fails says so, hands out nothing and leaves nothing alive.
#include "support/refusing_memory.h"

#include <gtest/gtest.h>

#include "component/class_table.h"
#include "component/com_object.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_test::WithoutMemory;

/// A controlling object that counts, and has nothing else to offer.
class Outer final : public IUnknown {
public:
    HRESULT PIXMORPH_CALL QueryInterface(const GUID&, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG PIXMORPH_CALL AddRef() override { return ++references; }
    ULONG PIXMORPH_CALL Release() override { return --references; }

    ULONG references = 1;
};

TEST(RefusedMemory, EveryAllocationOfEveryConstructor) {
    for (const ComponentClass& componentClass : ComponentClasses())
        for (const bool aggregated : {false, true}) {
            SCOPED_TRACE(componentClass.name);
            Outer outer;
            for (int allocations = 0;; ++allocations) {
                ASSERT_LT(allocations, 1000);
                void* object = nullptr;
                const HRESULT result = WithoutMemory(
                    [&] { return componentClass.create(aggregated ? &outer : nullptr, IID_IUnknown, &object); },
                    allocations);
                if (result == S_OK) {
                    EXPECT_GE(allocations, 1) << "an object needs memory";
                    EXPECT_TRUE(IsModuleLocked());
                    EXPECT_EQ(static_cast<IUnknown*>(object)->Release(), 0u);
                } else {
                    EXPECT_EQ(result, E_OUTOFMEMORY) << allocations;
                    EXPECT_EQ(object, nullptr);
                }
                EXPECT_FALSE(IsModuleLocked());
                EXPECT_EQ(outer.references, 1u);
                if (result == S_OK) break;
            }
        }
}

}  // namespace
