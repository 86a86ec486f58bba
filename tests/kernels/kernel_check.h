// Every variant of every dispatch slot against its plain form. A test file names the slots it checks; the harness walks
// their tables, so a new row is verified as soon as it stands there. A slot that no file names fails the suite.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>
#include <set>
#include <string>
#include <utility>

#include "foundation/dispatch.h"
#include "support/byte_difference.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

inline std::set<const km::DispatchSlotBase*>& CheckedSlots() {
    static std::set<const km::DispatchSlotBase*> slots;
    return slots;
}

/// A slot's name in test output; slots of a table add their number.
inline std::string SlotLabel(const km::DispatchSlotBase& slot) {
    return slot.Index() < 0 ? slot.Name() : std::string(slot.Name()) + "_" + std::to_string(slot.Index());
}

/// States that a file checks these slots, or all slots of a table.
struct ChecksSlots {
    ChecksSlots(std::initializer_list<const km::DispatchSlotBase*> slots) {
        for (const km::DispatchSlotBase* slot : slots) CheckedSlots().insert(slot);
    }
    template <class Signature, std::size_t Count>
    explicit ChecksSlots(const km::SlotTable<Signature, Count>& table) {
        for (std::size_t i = 0; i < Count; ++i) CheckedSlots().insert(&table[i]);
    }
};

/// Says once that this processor cannot run a form: an unverified form must not look like a verified one.
inline void ReportMissing(const km::DispatchSlotBase& slot, std::size_t row) {
    static std::set<std::pair<const km::DispatchSlotBase*, std::size_t>> reported;
    if (!reported.insert({&slot, row}).second) return;
    std::printf("[ NOT RUN  ] %s: this processor cannot run its form %s\n", SlotLabel(slot).c_str(), slot.RowSet(row));
}

/// Calls `check(variant, plain)` for every row after the first that this processor can run. Checks compare with what
/// the variant gives as the actual side and what the plain form gives as the expected one.
template <class Signature, class Check>
void ForEachVariant(const km::ResolvedSlot<Signature>& slot, Check check) {
    Signature* const plain = slot.Row(0).function;
    for (std::size_t row = 1; row < slot.RowCount(); ++row) {
        const auto& entry = slot.Row(row);
        if ((entry.requiredFeatures & km::EnabledFeatures()) != entry.requiredFeatures) {
            ReportMissing(slot, row);
            continue;
        }
        SCOPED_TRACE(SlotLabel(slot) + ": actual from " + entry.set + ", expected from " + slot.RowSet(0));
        EXPECT_NE(entry.function, plain) << "the row repeats the plain form";
        check(entry.function, plain);
        if (::testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace pixmorph_test
