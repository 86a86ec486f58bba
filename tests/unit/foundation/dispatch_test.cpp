// Dispatch slots: row selection, resolution on the first call, restriction, and threads racing on a first call.
#include "foundation/dispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_test::FeatureLevels;
using pixmorph_test::RestrictedFeatures;

int Plain(int value) { return value + 1000; }
int Second(int value) { return value + 2000; }
int Third(int value) { return value + 3000; }
int Last(int value) { return value + 4000; }

using Slot = DispatchSlot<int(int)>;

constexpr FormsBySet<int(int)> kForms{Plain, Second, Third, Last};

int ExpectedFor(std::uint32_t features) {
    if ((features & FEATURES_AVX512BW) == FEATURES_AVX512BW) return 4000;
    if ((features & 0x937F) == 0x937F) return 3000;
    return (features & 0x17F) == 0x17F ? 2000 : 1000;
}

}  // namespace

namespace KorvaneSoftware {

extern DispatchSlot<int(int)> TestAdd;
extern DispatchSlot<int(int)> TestTwin;
PIXMORPH_SLOT(DispatchSlot<int(int)>, TestAdd, Plain, Second, Third, Last);
extern DispatchSlot<int(int)> TestSparse;
extern SlotTable<int(int), 2> TestTable;
PIXMORPH_SLOT(DispatchSlot<int(int)>, TestTwin, Plain, Second, Third, Last);
PIXMORPH_SLOT(DispatchSlot<int(int)>, TestSparse, Plain, nullptr, Third, nullptr);
PIXMORPH_SLOT_TABLE(int(int), 2, TestTable, {Plain, Second, nullptr, nullptr}, {Last, nullptr, nullptr, nullptr});

}  // namespace KorvaneSoftware

namespace {

TEST(SelectDispatchRow, TakesTheLastRowThatIsContained) {
    constexpr Slot::Entry rows[] = {{0, Plain, "a"}, {0x1F, Second, "b"}, {0x937F, Third, "c"}};
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x137F), 1);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x937F), 2);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x1F), 1);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x1E), 0);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0), 0);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0xFFFFFFFF), 2);
    EXPECT_EQ(SelectDispatchRow(rows + 1, 2, 0), -1);
    EXPECT_EQ(SelectDispatchRow(rows, 0, 0xFFFFFFFF), -1);
}

TEST(SelectDispatchRow, VendorRows) {
    constexpr Slot::Entry rows[] = {{0, Plain, "a"}, {0x1F, Second, "b"}, {0x1000001F, Third, "c"}};
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x1000001F), 2);
    EXPECT_EQ(SelectDispatchRow(rows, 3, 0x2000001F), 1);
}

TEST(DispatchSlot, ResolvesOnTheFirstCallAndPassesItThrough) {
    TestTwin.Unresolve();
    EXPECT_EQ(TestTwin(7), 7 + ExpectedFor(EnabledFeatures()));
    EXPECT_EQ(TestTwin(8), 8 + ExpectedFor(EnabledFeatures()));
}

TEST(DispatchSlot, StaysWithItsFirstAnswer) {
    // A slot that does not take part in the restriction keeps the function it resolved to.
    static constinit Slot lone{"TestLone", Plain, kForms};
    const auto function = lone.Resolve();
    const RestrictedFeatures restricted(0);
    EXPECT_EQ(lone(1), function(1));
    EXPECT_EQ(lone.Resolve()(1), 1001);
}

TEST(DispatchSlot, TellsItsRows) {
    EXPECT_STREQ(TestAdd.Name(), "TestAdd");
    ASSERT_EQ(TestAdd.RowCount(), 4u);
    EXPECT_STREQ(TestAdd.RowSet(2), "Avx2");
    EXPECT_EQ(TestAdd.RowFeatures(2), 0x937Fu);
    EXPECT_EQ(TestAdd.Row(1).function, Second);
}

TEST(DispatchSlot, LeavesOutAbsentForms) {
    ASSERT_EQ(TestSparse.RowCount(), 2u);
    EXPECT_STREQ(TestSparse.RowSet(0), "Plain");
    EXPECT_STREQ(TestSparse.RowSet(1), "Avx2");
    const RestrictedFeatures restricted(FEATURES_SSE41);
    EXPECT_EQ(TestSparse(1), 1001);
}

TEST(SlotTable, HasASlotForEachNumber) {
    EXPECT_EQ(TestTable.Size(), 2u);
    for (int i = 0; i < 2; ++i) {
        const auto& slot = TestTable[static_cast<std::size_t>(i)];
        EXPECT_STREQ(slot.Name(), "TestTable");
        EXPECT_EQ(slot.Index(), i);
    }
    EXPECT_EQ(TestAdd.Index(), -1);
    EXPECT_EQ(TestTable[0].RowCount(), 2u);
    EXPECT_EQ(TestTable[1].RowCount(), 1u);
    const RestrictedFeatures restricted(0);
    EXPECT_EQ(TestTable[0](1), 1001);
    EXPECT_EQ(TestTable[1](1), 4001);
}

TEST(RestrictFeatures, RunsEveryLevel) {
    const std::uint32_t all = EnabledFeatures();
    for (const std::uint32_t level : {0u, 0x1Fu, 0x17Fu, 0x937Fu, 0xFFFFFFFFu}) {
        {
            const RestrictedFeatures restricted(level);
            EXPECT_EQ(EnabledFeatures(), all & level);
            EXPECT_EQ(TestAdd(1), 1 + ExpectedFor(all & level)) << level;
        }
        EXPECT_EQ(EnabledFeatures(), all);
        EXPECT_EQ(TestAdd(1), 1 + ExpectedFor(all));
    }
}

TEST(RestrictFeatures, LevelsStartPlain) {
    const std::vector<std::uint32_t> levels = FeatureLevels();
    ASSERT_FALSE(levels.empty());
    EXPECT_EQ(levels.front(), 0u);
    for (const std::uint32_t level : levels) EXPECT_EQ(EnabledFeatures() & level, level);
}

TEST(DispatchSlots, AreEnumerable) {
    std::set<std::string> names;
    for (DispatchSlotBase* slot = DispatchSlotBase::First(); slot != nullptr; slot = slot->Next()) {
        SCOPED_TRACE(slot->Name());
        const std::string number = slot->Index() < 0 ? "" : std::to_string(slot->Index());
        EXPECT_TRUE(names.insert(slot->Name() + number).second) << "registered twice";
        ASSERT_GE(slot->RowCount(), 1u);
        EXPECT_EQ(slot->RowFeatures(0), 0u) << "the first row is the plain form";
        std::set<std::string> rows;
        for (std::size_t row = 0; row < slot->RowCount(); ++row) {
            EXPECT_TRUE(rows.insert(slot->RowSet(row)).second) << slot->RowSet(row);
            // Ascending order of demand: no later row may be contained in an earlier one, or it would never run.
            for (std::size_t earlier = 0; earlier < row; ++earlier)
                EXPECT_NE(slot->RowFeatures(row) & slot->RowFeatures(earlier), slot->RowFeatures(row))
                    << slot->RowSet(row);
        }
    }
    for (const char* expected :
         {"TestAdd", "TestTwin", "CopyCached", "CopyStreaming", "FillBytesCached", "FillBytesStreaming",
          "FillWordsCached", "FillWordsStreaming", "FillDwordsCached", "FillDwordsStreaming"})
        EXPECT_EQ(names.count(expected), 1u) << expected;
}

TEST(DispatchSlot, FirstCallsMayRace) {
    const int expected = 5 + ExpectedFor(EnabledFeatures());
    for (int round = 0; round < 50; ++round) {
        RestrictFeatures(0xFFFFFFFF);
        std::atomic<bool> go{false};
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                while (!go.load()) std::this_thread::yield();
                if (TestAdd(5) != expected || TestTwin(5) != expected) wrong.fetch_add(1);
            });
        go.store(true);
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong.load(), 0);
    }
}

}  // namespace
