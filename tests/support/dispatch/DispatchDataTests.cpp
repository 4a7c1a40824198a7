#include "support/dispatch/DispatchData.h"
#include "support/dispatch/DispatchQueue.h"
#include "tests/ConcatenatedData.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

// Under the sanitizer, too, an allocation that cannot be gives null.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace navrel {
namespace {

DispatchData dataOf(const char* text) {
    return DispatchData::copying(text);
}

TEST(DispatchData, isEmptyAtFirst) {
    const DispatchData data;
    EXPECT_TRUE(data.isEmpty());
    EXPECT_EQ(data.size(), 0U);
    EXPECT_TRUE(data.regions().empty());
    EXPECT_EQ(data.bytes(), nullptr);
    EXPECT_TRUE(data.contiguous()->isEmpty());
}

TEST(DispatchData, refersToTheBytesOfAnArrayWithoutCopyingThem) {
    const QByteArray array("payload");
    const auto data = DispatchData::referencing(array);
    EXPECT_EQ(static_cast<const void*>(data.bytes()), array.constData());
    EXPECT_EQ(data.size(), 7U);
}

TEST(DispatchData, keepsTheBytesOfAnArrayThatIsGone) {
    auto array = std::make_unique<QByteArray>("payload");
    const auto data = DispatchData::referencing(*array);
    array.reset();
    EXPECT_EQ(data.toByteArray(), "payload");
}

TEST(DispatchData, takesMemoryOver) {
    MallocedBytes bytes(static_cast<char*>(std::malloc(3)));
    std::memcpy(bytes.get(), "abc", 3);
    const char* address = bytes.get();
    const auto data = DispatchData::owning(std::move(bytes), 3);
    EXPECT_EQ(data.bytes(), address);
    EXPECT_EQ(data.toByteArray(), "abc");
}

TEST(DispatchData, joinsWithoutCopyingAndLeavesTheOriginalsAlone) {
    const auto first = dataOf("ab");
    const auto second = dataOf("cde");
    const auto both = concatenated(first, second);
    ASSERT_EQ(both.regions().size(), 2U);
    EXPECT_EQ(both.regions()[0].bytes.get(), first.bytes());
    EXPECT_EQ(both.regions()[1].bytes.get(), second.bytes());
    EXPECT_EQ(both.size(), 5U);
    EXPECT_EQ(first.toByteArray(), "ab");
    EXPECT_EQ(second.toByteArray(), "cde");
}

TEST(DispatchData, appendsItselfToItself) {
    auto data = concatenated(dataOf("ab"), dataOf("c"));
    data.append(data);
    EXPECT_EQ(data.toByteArray(), "abcabc");
}

TEST(DispatchData, isEmptyOnceItIsMovedFrom) {
    auto data = concatenated(dataOf("ab"), dataOf("c"));
    const DispatchData moved = std::move(data);
    EXPECT_EQ(moved.toByteArray(), "abc");
    EXPECT_TRUE(data.isEmpty());
    EXPECT_TRUE(data.regions().empty());
}

TEST(DispatchData, skipsEmptyPartsWhenJoining) {
    const auto data = concatenated(concatenated({}, dataOf("a")), {});
    EXPECT_EQ(data.regions().size(), 1U);
}

TEST(DispatchData, mapsOneRegionWithoutCopyingIt) {
    const auto data = dataOf("abc");
    EXPECT_EQ(data.contiguous()->bytes(), data.bytes());
}

TEST(DispatchData, mapsSeveralRegionsIntoOneCopy) {
    auto data = concatenated(dataOf("ab"), dataOf("cde"));
    data.append(dataOf("f"));
    const auto mapped = data.contiguous();
    ASSERT_TRUE(mapped);
    ASSERT_EQ(mapped->regions().size(), 1U);
    EXPECT_EQ(QByteArray(mapped->bytes(), 6), "abcdef");
}

TEST(DispatchData, givesNothingWhenThereIsNoMemoryToMapInto) {
    // Two regions that claim more than any system can allocate; no byte of them is touched.
    static const char byte = 'x';
    constexpr size_t kQuarter = std::numeric_limits<size_t>::max() / 4;
    const auto huge = DispatchData::borrowing(&byte, kQuarter, nullptr, [] {});
    EXPECT_FALSE(concatenated(huge, huge).contiguous());
}

TEST(BorrowedData, isReturnedOnceOnItsQueueAfterTheLastReference) {
    int returned = 0;
    bool onQueue = false;
    auto data = DispatchData::borrowing("abc", 3, DispatchQueue::mainQueue(), [&] {
        ++returned;
        onQueue = !DispatchQueue::mainQueue()->tryPerform([] {}); // one of its jobs runs
    });
    auto joined = concatenated(data, dataOf("d"));
    data = {};
    QCoreApplication::processEvents();
    EXPECT_EQ(returned, 0);

    joined = {};
    EXPECT_EQ(returned, 0);
    EXPECT_TRUE(waitUntil([&] { return returned > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(returned, 1);
    EXPECT_TRUE(onQueue);
}

TEST(BorrowedData, isReturnedAtOnceWithoutAQueue) {
    int returned = 0;
    auto data = DispatchData::borrowing("abc", 3, nullptr, [&] { ++returned; });
    EXPECT_EQ(returned, 0);
    data = {};
    EXPECT_EQ(returned, 1);
}

TEST(BorrowedData, isReturnedEvenIfItIsEmpty) {
    int returned = 0;
    const auto data = DispatchData::borrowing("", 0, nullptr, [&] { ++returned; });
    EXPECT_TRUE(data.isEmpty());
    EXPECT_EQ(returned, 1);
}

TEST(DispatchDataDeathTest, hasNoSingleAddressInSeveralRegions) {
    const auto data = concatenated(dataOf("a"), dataOf("b"));
    EXPECT_DEATH(data.bytes(), "regions_.empty\\(\\)");
}

} // namespace
} // namespace navrel
