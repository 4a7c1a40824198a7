#include "support/dispatch/WaitingLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;

using Line = WaitingLine<std::unique_ptr<int>>;

void add(Line& line, int number) {
    line.emplaceBack(std::make_unique<int>(number));
}

std::vector<int> numbersIn(const Line& line) {
    std::vector<int> numbers;
    for (const auto& number : line) {
        numbers.push_back(*number);
    }
    return numbers;
}

TEST(WaitingLine, servesInTheOrderOfComing) {
    Line line;
    EXPECT_TRUE(line.empty());
    add(line, 1);
    add(line, 2);
    EXPECT_EQ(*line.takeFront(), 1);
    add(line, 3);
    EXPECT_EQ(line.size(), 2U);
    EXPECT_THAT(numbersIn(line), ElementsAre(2, 3));
    EXPECT_EQ(*line.takeFront(), 2);
    EXPECT_EQ(*line.takeFront(), 3);
    EXPECT_TRUE(line.empty());
}

TEST(WaitingLine, whatIsPutBackComesFirstAgain) {
    Line line;
    add(line, 1);
    auto first = line.takeFront();
    add(line, 2);
    add(line, 3);
    line.pushFront(std::move(first)); // into an emptied line
    EXPECT_THAT(numbersIn(line), ElementsAre(1, 2, 3));

    first = line.takeFront();
    line.pushFront(std::move(first)); // into its own place
    EXPECT_THAT(numbersIn(line), ElementsAre(1, 2, 3));
}

TEST(WaitingLine, aLineThatNeverEmptiesKeepsItsOrder) {
    Line line;
    int added = 0;
    for (; added < 100; ++added) {
        add(line, added);
    }
    for (int served = 0; served < 10'000; ++served) {
        ASSERT_EQ(*line.takeFront(), served);
        add(line, added++);
        ASSERT_EQ(line.size(), 100U);
    }
}

} // namespace
} // namespace navrel
