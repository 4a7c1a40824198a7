#include "support/dispatch/ReadOperation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace navrel {
namespace {

constexpr size_t kWhole = std::numeric_limits<size_t>::max();
constexpr quint64 kFourGigabytes = 0xFFFFFFFF;

/// A read-ahead buffer in which the text waits.
ReadAhead aheadWith(std::string_view text) {
    ReadAhead ahead;
    std::copy(text.begin(), text.end(), ahead.room().begin());
    ahead.filled(text.size());
    return ahead;
}

std::string_view waitingIn(const ReadAhead& ahead) {
    return {ahead.waiting().data(), ahead.waiting().size()};
}

TEST(ReadOperation, gathersItsLengthAndTakesNoMore) {
    ReadOperation read(5, kWhole);
    ReadAhead first = aheadWith("abc");
    EXPECT_TRUE(read.take(first));
    EXPECT_TRUE(first.isEmpty());
    EXPECT_FALSE(read.isPieceComplete());
    EXPECT_EQ(read.missing(), 2U);

    ReadAhead second = aheadWith("defg");
    EXPECT_TRUE(read.take(second));
    EXPECT_EQ(waitingIn(second), "fg");
    EXPECT_TRUE(read.isPieceComplete());
    EXPECT_TRUE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "abcde");
}

TEST(ReadOperation, ofNoBytesIsCompleteAtOnce) {
    ReadOperation read(0, kWhole);
    EXPECT_TRUE(read.isPieceComplete());
    EXPECT_TRUE(read.isLastPiece());
    EXPECT_TRUE(read.takePiece().isEmpty());
}

TEST(ReadOperation, comesInPiecesOfTheSizeAskedFor) {
    ReadOperation read(5, 2);
    ReadAhead ahead = aheadWith("abcdef");
    EXPECT_TRUE(read.take(ahead));
    EXPECT_FALSE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "ab");
    EXPECT_TRUE(read.take(ahead));
    EXPECT_FALSE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "cd");
    EXPECT_TRUE(read.take(ahead));
    EXPECT_TRUE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "e");
    EXPECT_EQ(waitingIn(ahead), "f");
}

TEST(ReadOperation, aPieceThatHasAllArrivedIsAShareInWhatWasReadAhead) {
    ReadAhead ahead = aheadWith("headpayl");
    const char* const bytes = ahead.waiting().data();
    ReadOperation header(4, kWhole);
    EXPECT_TRUE(header.take(ahead));
    EXPECT_TRUE(header.isPieceComplete());
    EXPECT_EQ(header.takePiece().bytes(), bytes);
    ReadOperation payload(5, kWhole); // whose last byte has not arrived
    EXPECT_TRUE(payload.take(ahead));
    EXPECT_FALSE(payload.isPieceComplete());
    EXPECT_NE(payload.takePiece().bytes(), bytes + 4);
}

TEST(ReadOperation, whatSomebodyHasAShareInIsNotWrittenOver) {
    ReadAhead ahead = aheadWith("kept");
    ReadOperation read(4, kWhole);
    EXPECT_TRUE(read.take(ahead));
    DispatchData kept = read.takePiece();
    const char* const bytes = kept.bytes();

    EXPECT_NE(ahead.room().data(), bytes);
    std::fill(ahead.room().begin(), ahead.room().end(), 'x');
    EXPECT_EQ(kept.toByteArray(), "kept");
    const char* const second = ahead.room().data();
    EXPECT_EQ(ahead.room().data(), second); // nobody has a share: the same memory again
}

TEST(ReadOperation, takesNoMemoryBeforeBytesArrive) {
    ReadOperation read(100, kWhole);
    ReadAhead nothing;
    EXPECT_TRUE(read.take(nothing));
    EXPECT_EQ(read.missing(), 100U);
    EXPECT_FALSE(read.isLarge());
    EXPECT_EQ(read.room().size(), 100U);
}

TEST(ReadOperation, givesRoomForTheWholeOfAnOrdinaryLengthAtOnce) {
    ReadOperation read(ReadOperation::kFirstCapacity, kWhole);
    EXPECT_EQ(read.room().size(), ReadOperation::kFirstCapacity);
}

TEST(ReadOperation, believesAnAnnouncedLengthOnlyAsFarAsBytesArrive) {
    ReadOperation read(kFourGigabytes, kWhole);
    EXPECT_EQ(read.room().size(), ReadOperation::kFirstCapacity);
    read.filled(ReadOperation::kFirstCapacity - 1);
    EXPECT_EQ(read.room().size(), 1U);
    read.filled(1);
    EXPECT_EQ(read.room().size(), ReadOperation::kFirstCapacity); // doubled
}

TEST(ReadOperation, keepsItsBytesWhileItGrows) {
    const QByteArray sent(3 * ReadOperation::kFirstCapacity + 1, 'x');
    ReadOperation read(static_cast<quint64>(sent.size()), kWhole);
    EXPECT_TRUE(read.isLarge());
    while (!read.isPieceComplete()) {
        const std::span<char> room = read.room();
        ASSERT_FALSE(room.empty());
        std::fill(room.begin(), room.end(), 'x');
        read.filled(room.size());
    }
    const DispatchData piece = read.takePiece();
    EXPECT_EQ(piece.regions().size(), 1U);
    EXPECT_TRUE(piece.toByteArray() == sent);
}

} // namespace
} // namespace navrel
