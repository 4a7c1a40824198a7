#include "support/dispatch/WriteOperation.h"
#include "tests/ConcatenatedData.h"

#include <gtest/gtest.h>

#include <string>

namespace navrel {
namespace {

const WritePrefix kHeader({'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd',
                           'e', 'f'});

std::string unwrittenOf(const WriteOperation& write) {
    WriteVectors vectors;
    write.gather(vectors);
    std::string bytes;
    for (const iovec& vector : vectors.all()) {
        bytes.append(static_cast<const char*>(vector.iov_base), vector.iov_len);
    }
    return bytes;
}

TEST(WriteOperation, goesOnFromEveryPlaceWhereTheSystemStopped) {
    const std::string all = "0123456789abcdefxyz";
    for (size_t first = 0; first <= all.size(); ++first) {
        WriteOperation write(kHeader,
                             concatenated(DispatchData::copying("xy"), DispatchData::copying("z")));
        EXPECT_EQ(write.unwritten(), all.size());
        EXPECT_EQ(write.advance(first), first);
        EXPECT_EQ(unwrittenOf(write), all.substr(first));
        EXPECT_EQ(write.advance(100), all.size() - first);
        EXPECT_EQ(write.unwritten(), 0U);
        EXPECT_EQ(unwrittenOf(write), "");
    }
}

TEST(WriteOperation, prefixAndDataMayBothBeMissing) {
    EXPECT_EQ(unwrittenOf(WriteOperation(kHeader, {})), "0123456789abcdef");
    EXPECT_EQ(unwrittenOf(WriteOperation(WritePrefix(), DispatchData::copying("x"))), "x");
    EXPECT_EQ(WriteOperation(WritePrefix(), {}).unwritten(), 0U);
}

} // namespace
} // namespace navrel
