// Parts made by several threads and joined in order: who makes which, the order, failures and what is thrown.
#include "foundation/part_results.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace KorvaneSoftware;

struct Piece {
    unsigned length = 0;
    std::thread::id maker;
};

struct Book {
    std::vector<unsigned> worker = std::vector<unsigned>(16, 99);
    std::vector<unsigned> joined;
    std::string text;
    std::string stores[16];

    auto Make() {
        return [this](unsigned by, unsigned part, Piece& piece) -> Status {
            worker[part] = by;
            stores[part] = std::string(part + 1, static_cast<char>('a' + part));
            piece.length = part + 1;
            piece.maker = std::this_thread::get_id();
            return 0;
        };
    }
    auto Join() {
        return [this](unsigned part, const Piece& piece) -> Status {
            joined.push_back(part);
            text += stores[part].substr(0, piece.length);
            return 0;
        };
    }
};

class PartResultsTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(team_.Configure(3), 0);
        ASSERT_EQ(results_.Create(16), 0);
    }
    WorkerTeam team_;
    PartResults<Piece> results_;
};

TEST_F(PartResultsTest, SharesPartsOutByTurns) {
    for (int round = 0; round < 200; ++round) {
        Book book;
        ASSERT_EQ(results_.Run(team_, 2, 4, book.Make(), book.Join()), 0);
        EXPECT_EQ(std::vector<unsigned>(book.worker.begin(), book.worker.begin() + 5),
                  (std::vector<unsigned>{0, 1, 0, 1, 99}));
        ASSERT_EQ(book.text, "abbcccdddd");
    }
}

TEST_F(PartResultsTest, LeavesWorkersWithoutAPartAsleep) {
    Book book;
    EXPECT_EQ(results_.Run(team_, 3, 2, book.Make(), book.Join()), 0);
    EXPECT_EQ(book.worker[0], 0u);
    EXPECT_EQ(book.worker[1], 1u);
    Book alone;
    EXPECT_EQ(results_.Run(team_, 1, 5, alone.Make(), alone.Join()), 0);
    for (unsigned part = 0; part < 5; ++part) EXPECT_EQ(alone.worker[part], 0u);
    Book more;
    EXPECT_EQ(results_.Run(team_, 9, 16, more.Make(), more.Join()), 0);
    for (unsigned part = 0; part < 16; ++part) EXPECT_EQ(more.worker[part], part % 3);
}

TEST_F(PartResultsTest, JoinsInOrderOnTheCallersThreadWhateverEndsFirst) {
    Book book;
    const auto slowFirst = [&](unsigned worker, unsigned part, Piece& piece) -> Status {
        if (part % 3 == 1) std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return book.Make()(worker, part, piece);
    };
    const auto join = [&](unsigned part, const Piece& piece) -> Status {
        EXPECT_EQ(piece.maker == std::this_thread::get_id(), part % 3 == 0);
        return book.Join()(part, piece);
    };
    ASSERT_EQ(results_.Run(team_, 3, 7, slowFirst, join), 0);
    EXPECT_EQ(book.joined, (std::vector<unsigned>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(book.text, "abbcccddddeeeeeffffffggggggg");
}

TEST_F(PartResultsTest, TheFirstFailureIsTheResultAndEndsTheJoining) {
    for (unsigned failing = 0; failing < 6; ++failing)
        for (const bool throws : {false, true}) {
            Book book;
            const auto make = [&](unsigned worker, unsigned part, Piece& piece) -> Status {
                if (part == failing && throws) throw std::runtime_error("part");
                const Status status = book.Make()(worker, part, piece);
                return part == failing || part == 5 ? -17 - static_cast<Status>(part) : status;
            };
            const Status expected = throws ? IMG_E_EXCEPTION : -17 - static_cast<Status>(failing);
            ASSERT_EQ(results_.Run(team_, 3, 6, make, book.Join()), expected) << failing << throws;
            EXPECT_EQ(book.joined.size(), failing);
            // The parts after it were made all the same, and the next unit finds nothing left over.
            for (unsigned part = failing + 1; part < 6; ++part) EXPECT_EQ(book.worker[part], part % 3);
            Book next;
            ASSERT_EQ(results_.Run(team_, 3, 6, next.Make(), next.Join()), 0);
            EXPECT_EQ(next.text, "abbcccddddeeeeeffffff");
        }
}

TEST_F(PartResultsTest, AJoinThatFailsOrThrowsEndsTheJoining) {
    Book book;
    const auto join = [&](unsigned part, const Piece& piece) -> Status {
        book.Join()(part, piece);
        return part == 2 ? 2 : 0;
    };
    EXPECT_EQ(results_.Run(team_, 3, 6, book.Make(), join), 2);
    EXPECT_EQ(book.joined, (std::vector<unsigned>{0, 1, 2}));
    const auto throwing = [](unsigned, const Piece&) -> Status { throw std::runtime_error("join"); };
    EXPECT_EQ(results_.Run(team_, 3, 6, book.Make(), throwing), IMG_E_EXCEPTION);
    Book next;
    EXPECT_EQ(results_.Run(team_, 3, 2, next.Make(), next.Join()), 0);
    EXPECT_EQ(next.text, "abb");
}

TEST_F(PartResultsTest, ChecksTheNumberOfParts) {
    Book book;
    EXPECT_EQ(results_.Count(), 16u);
    EXPECT_EQ(results_.Run(team_, 3, 0, book.Make(), book.Join()), 0);
    EXPECT_EQ(results_.Run(team_, 3, 17, book.Make(), book.Join()), IMG_E_BAD_SIZE);
    EXPECT_TRUE(book.joined.empty());
    PartResults<Piece> none;
    EXPECT_EQ(none.Run(team_, 3, 1, book.Make(), book.Join()), IMG_E_BAD_SIZE);
}

}  // namespace
