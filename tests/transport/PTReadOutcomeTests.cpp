#include "tests/ConcatenatedData.h"
#include "transport/frames/PTReadOutcome.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <limits>

namespace navrel {
namespace {

const QByteArray kHeader = QByteArray::fromHex("00000001"   // version
                                               "00000005"   // type
                                               "00000007"   // tag
                                               "00000003"); // payload size

DispatchData headerBytes(qsizetype count = kHeader.size()) {
    return DispatchData::copying(kHeader.first(count));
}

/// Data in two regions whose sum no memory holds; no byte of it is touched.
DispatchData dataThatCannotBeMapped() {
    const size_t half = std::numeric_limits<size_t>::max() / 4;
    const auto region = DispatchData::borrowing("", half, nullptr, [] {});
    return concatenated(region, region);
}

void expectHeaderError(const PTHeaderOutcome& outcome, const Error& error) {
    EXPECT_EQ(outcome.error, error);
    EXPECT_EQ(outcome.header, PTFrameHeader());
}

TEST(PTHeaderOutcome, isTheHeader) {
    const auto outcome = headerOutcome(headerBytes(), 0);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_EQ(outcome.header, (PTFrameHeader{5, 7, 3}));
}

TEST(PTHeaderOutcome, isTheHeaderOfBytesInSeveralRegions) {
    const auto halves = concatenated(headerBytes(10), DispatchData::copying(kHeader.sliced(10)));
    EXPECT_EQ(headerOutcome(halves, 0).header, (PTFrameHeader{5, 7, 3}));
}

TEST(PTHeaderOutcome, isType0WithoutAnErrorAtTheEndOfTheStream) {
    const auto outcome = headerOutcome({}, 0);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_EQ(outcome.header, PTFrameHeader());
}

TEST(PTHeaderOutcome, isTheErrorOfTheReadWhateverHadArrived) {
    expectHeaderError(headerOutcome({}, ECONNRESET), Error::posix(ECONNRESET));
    expectHeaderError(headerOutcome(headerBytes(), ECANCELED), Error::posix(ECANCELED));
}

TEST(PTHeaderOutcome, isMalformedWhenTheReadEndsWithinTheHeader) {
    for (const qsizetype count : {1, 4, 15}) {
        expectHeaderError(headerOutcome(headerBytes(count), 0), Error(kPTProtocolErrorDomain, 0));
    }
}

TEST(PTHeaderOutcome, isMalformedForAnotherVersion) {
    const auto other = QByteArray::fromHex("00000002000000050000000700000003");
    expectHeaderError(headerOutcome(DispatchData::copying(other), 0),
                      Error(kPTProtocolErrorDomain, 0));
}

TEST(PTHeaderOutcome, isOutOfMemoryWhenTheBytesCannotBeMapped) {
    expectHeaderError(headerOutcome(dataThatCannotBeMapped(), 0), Error::posix(ENOMEM));
}

TEST(PTPayloadOutcome, isTheBytesInOnePieceWithoutACopy) {
    const auto bytes = DispatchData::copying("abc");
    const auto outcome = payloadOutcome(bytes, 0);
    EXPECT_EQ(outcome.error, std::nullopt);
    ASSERT_TRUE(outcome.contiguousData);
    EXPECT_EQ(outcome.contiguousData->bytes(), bytes.bytes());
    EXPECT_EQ(outcome.contiguousData->size(), 3U);
}

TEST(PTPayloadOutcome, isNeitherBytesNorAnErrorAtTheEndOfTheStream) {
    const auto outcome = payloadOutcome({}, 0);
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_FALSE(outcome.contiguousData);
}

TEST(PTPayloadOutcome, isTheErrorOfTheReadWhateverHadArrived) {
    const auto outcome = payloadOutcome(DispatchData::copying("ab"), ECONNRESET);
    EXPECT_EQ(outcome.error, Error::posix(ECONNRESET));
    EXPECT_FALSE(outcome.contiguousData);
}

TEST(PTPayloadOutcome, isOutOfMemoryWhenTheBytesCannotBeMapped) {
    const auto outcome = payloadOutcome(dataThatCannotBeMapped(), 0);
    EXPECT_EQ(outcome.error, Error::posix(ENOMEM));
    EXPECT_FALSE(outcome.contiguousData);
}

} // namespace
} // namespace navrel
