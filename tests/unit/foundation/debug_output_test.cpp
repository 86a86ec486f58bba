// The debug output and the sink that replaces it.
#include "foundation/debug_output.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/status.h"

namespace {

using namespace KorvaneSoftware;

std::vector<std::string> g_lines;

void Collect(const char* text) { g_lines.emplace_back(text); }

TEST(DebugOutput, GoesToTheSink) {
    g_lines.clear();
    EXPECT_EQ(SetDebugSink(Collect), nullptr);
    DebugOutput("one");
    DebugOutput("two");
    EXPECT_EQ(SetDebugSink(nullptr), Collect);
    EXPECT_EQ(g_lines, (std::vector<std::string>{"one", "two"}));
}

TEST(DebugOutput, GoesToStandardErrorWithoutOne) {
    testing::internal::CaptureStderr();
    DebugOutput("plain line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "plain line\n");
}

TEST(Guarded, TurnsExceptionsIntoAStatus) {
    EXPECT_EQ(Guarded([]() -> Status { return 5; }), 5);
    EXPECT_EQ(Guarded([]() -> Status { throw 1; }), IMG_E_EXCEPTION);
    EXPECT_EQ(Guarded<int>(77, []() -> int { throw std::string("x"); }), 77);
}

}  // namespace
