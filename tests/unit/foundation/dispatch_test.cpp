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

// A requirement that no processor meets: the vendor bits exclude each other.
constexpr std::uint32_t kImpossible = FEATURES_INTEL | FEATURES_AMD;

constexpr Slot::Entry kRows[] = {{FEATURES_PLAIN, Plain, "Add_Plain"},
                                 {FEATURES_SSE2, Second, "Add_Sse2"},
                                 {FEATURES_AVX2, Third, "Add_Avx2"},
                                 {kImpossible, Last, "Add_Impossible"}};

extern Slot Add;
extern Slot Twin;
constinit Slot Add{"TestAdd", kRows, &ResolveOnFirstCall<Add>::Call};
constinit Slot Twin{"TestTwin", kRows, &ResolveOnFirstCall<Twin>::Call};
const SlotRegistration kRegistration{&Add, &Twin};

int ExpectedFor(std::uint32_t features) {
    if ((features & 0x937F) == 0x937F) return 3000;
    return (features & 0x1F) == 0x1F ? 2000 : 1000;
}

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
    Twin.Unresolve();
    EXPECT_EQ(Twin(7), 7 + ExpectedFor(EnabledFeatures()));
    EXPECT_EQ(Twin(8), 8 + ExpectedFor(EnabledFeatures()));
}

TEST(DispatchSlot, StaysWithItsFirstAnswer) {
    // A slot that does not take part in the restriction keeps the function it resolved to.
    static constinit Slot lone{"TestLone", kRows, Plain};
    const auto function = lone.Resolve();
    const RestrictedFeatures restricted(0);
    EXPECT_EQ(lone(1), function(1));
    EXPECT_EQ(lone.Resolve()(1), 1001);
}

TEST(DispatchSlot, TellsItsRows) {
    EXPECT_STREQ(Add.Name(), "TestAdd");
    ASSERT_EQ(Add.RowCount(), 4u);
    EXPECT_STREQ(Add.RowSet(2), "Add_Avx2");
    EXPECT_EQ(Add.RowFeatures(2), 0x937Fu);
    EXPECT_EQ(Add.Row(1).function, Second);
}

TEST(RestrictFeatures, RunsEveryLevel) {
    const std::uint32_t all = EnabledFeatures();
    for (const std::uint32_t level : {0u, 0x1Fu, 0x17Fu, 0x937Fu, 0xFFFFFFFFu}) {
        {
            const RestrictedFeatures restricted(level);
            EXPECT_EQ(EnabledFeatures(), all & level);
            EXPECT_EQ(Add(1), 1 + ExpectedFor(all & level)) << level;
        }
        EXPECT_EQ(EnabledFeatures(), all);
        EXPECT_EQ(Add(1), 1 + ExpectedFor(all));
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
                if (Add(5) != expected || Twin(5) != expected) wrong.fetch_add(1);
            });
        go.store(true);
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(wrong.load(), 0);
    }
}

}  // namespace
