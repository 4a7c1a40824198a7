#include "support/dispatch/ReadOperation.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

namespace navrel {
namespace {

constexpr size_t kWhole = std::numeric_limits<size_t>::max();
constexpr quint64 kFourGigabytes = 0xFFFFFFFF;

TEST(ReadOperation, gathersItsLengthAndTakesNoMore) {
    ReadOperation read(5, kWhole);
    EXPECT_EQ(read.take(std::string_view("abc")), 3U);
    EXPECT_FALSE(read.isPieceComplete());
    EXPECT_EQ(read.take(std::string_view("defg")), 2U);
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
    EXPECT_EQ(read.take(std::string_view("abcde")), 2U);
    EXPECT_FALSE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "ab");
    EXPECT_EQ(read.take(std::string_view("cde")), 2U);
    EXPECT_EQ(read.takePiece().toByteArray(), "cd");
    EXPECT_EQ(read.take(std::string_view("e")), 1U);
    EXPECT_TRUE(read.isLastPiece());
    EXPECT_EQ(read.takePiece().toByteArray(), "e");
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
    EXPECT_EQ(read.take({sent.constData(), static_cast<size_t>(sent.size())}),
              static_cast<size_t>(sent.size()));
    const DispatchData piece = read.takePiece();
    EXPECT_EQ(piece.regions().size(), 1U);
    EXPECT_EQ(piece.toByteArray(), sent);
}

} // namespace
} // namespace navrel
