#include "kernels/kernel_check.h"

namespace pixmorph_test {
namespace {

TEST(KernelCoverage, EverySlotHasACheck) {
    ASSERT_NE(km::DispatchSlotBase::First(), nullptr);
    for (const km::DispatchSlotBase* slot = km::DispatchSlotBase::First(); slot != nullptr; slot = slot->Next())
        EXPECT_TRUE(CheckedSlots().contains(slot)) << SlotLabel(*slot);
}

TEST(KernelCoverage, TablesRunFromPlainToMostDemanding) {
    for (const km::DispatchSlotBase* slot = km::DispatchSlotBase::First(); slot != nullptr; slot = slot->Next()) {
        SCOPED_TRACE(SlotLabel(*slot));
        EXPECT_EQ(slot->RowFeatures(0), km::FEATURES_PLAIN);
        for (std::size_t row = 1; row < slot->RowCount(); ++row)
            EXPECT_EQ(slot->RowFeatures(row) & slot->RowFeatures(row - 1), slot->RowFeatures(row - 1));
    }
}

}  // namespace
}  // namespace pixmorph_test
