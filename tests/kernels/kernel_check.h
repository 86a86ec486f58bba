// Every variant of every dispatch slot against its plain form. A test file names the slots it checks; the harness walks
// their tables, so a new row is verified as soon as it stands there. A slot that no file names fails the suite.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <set>

#include "foundation/dispatch.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

inline std::set<const km::DispatchSlotBase*>& CheckedSlots() {
    static std::set<const km::DispatchSlotBase*> slots;
    return slots;
}

/// States that a file checks these slots.
struct ChecksSlots {
    ChecksSlots(std::initializer_list<const km::DispatchSlotBase*> slots) {
        for (const km::DispatchSlotBase* slot : slots) CheckedSlots().insert(slot);
    }
};

/// Calls `check(variant, plain)` for every row behind the first that this processor can run.
template <class Signature, class Check>
void ForEachVariant(const km::ResolvedSlot<Signature>& slot, Check check) {
    Signature* const plain = slot.Row(0).function;
    for (std::size_t row = 1; row < slot.RowCount(); ++row) {
        const auto& entry = slot.Row(row);
        if ((entry.requiredFeatures & km::EnabledFeatures()) != entry.requiredFeatures) continue;
        SCOPED_TRACE(entry.set);
        EXPECT_NE(entry.function, plain) << "the row repeats the plain form";
        check(entry.function, plain);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace pixmorph_test
