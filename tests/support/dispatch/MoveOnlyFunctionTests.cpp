#include "support/dispatch/MoveOnlyFunction.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>

namespace navrel {
namespace {

using Function = MoveOnlyFunction<int(int)>;

TEST(MoveOnlyFunction, isNothingToCallUntilItIsGivenSomething) {
    EXPECT_FALSE(Function());
    EXPECT_FALSE(Function(nullptr));
    EXPECT_FALSE(Function(std::function<int(int)>()));
    EXPECT_FALSE(Function(static_cast<int (*)(int)>(nullptr)));
    EXPECT_TRUE(Function([](int value) { return value; }));
}

TEST(MoveOnlyFunction, passesArgumentsAndResults) {
    Function increment = [](int value) { return value + 1; };
    EXPECT_EQ(increment(41), 42);

    MoveOnlyFunction<std::unique_ptr<int>(std::unique_ptr<int>)> same =
        [](std::unique_ptr<int> value) { return value; };
    EXPECT_EQ(*same(std::make_unique<int>(7)), 7);
}

TEST(MoveOnlyFunction, keepsItsStateFromCallToCall) {
    Function sum = [total = 0](int value) mutable { return total += value; };
    EXPECT_EQ(sum(1), 1);
    EXPECT_EQ(sum(2), 3);
}

TEST(MoveOnlyFunction, holdsWhatCannotBeCopied) {
    Function add = [amount = std::make_unique<int>(2)](int value) { return value + *amount; };
    Function twice = [add = std::move(add)](int value) mutable { return add(add(value)); };
    EXPECT_EQ(twice(1), 5);
}

/// Moves a function that holds the value, and sees it let go of exactly when its last owner goes.
template <typename Callable>
void expectOneOwner(Callable callable, std::weak_ptr<int> held) {
    Function first = std::move(callable);
    Function second = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(second(1), 8);

    first = std::move(second);
    EXPECT_FALSE(second);
    EXPECT_EQ(first(1), 8);
    first = nullptr;
    EXPECT_TRUE(held.expired());
}

TEST(MoveOnlyFunction, hasOneOwnerOfWhatFitsInPlace) {
    auto held = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = held;
    expectOneOwner([held = std::move(held)](int value) { return value + *held; }, watched);
}

TEST(MoveOnlyFunction, hasOneOwnerOfWhatIsTooLargeForThat) {
    auto held = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = held;
    const std::array<char, Function::kInlineSize> ballast = {};
    expectOneOwner(
        [held = std::move(held), ballast](int value) { return value + *held + ballast[0]; },
        watched);
}

TEST(MoveOnlyFunction, letsGoOfWhatAnotherReplaces) {
    auto held = std::make_shared<int>(7);
    Function function = [held](int value) { return value + *held; };
    function = [](int value) { return value; };
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(function(3), 3);
}

} // namespace
} // namespace navrel
