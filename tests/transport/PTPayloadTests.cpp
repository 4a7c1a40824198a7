#include "support/core/Log.h"
#include "tests/ConcatenatedData.h"
#include "tests/WaitUntil.h"
#include "transport/frames/PTData.h"
#include "transport/frames/PTPayload.h"

#include <QPoint>
#include <QStringList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

TEST(ReferencingData, refersToTheBytesOfABufferWithoutCopyingThem) {
    const QByteArray buffer("payload");
    const DispatchData data = createReferencingDispatchData(buffer);
    EXPECT_EQ(static_cast<const void*>(data.bytes()), buffer.constData());
    EXPECT_EQ(data.size(), 7U);
}

TEST(ReferencingData, keepsTheBufferUntilAJobOfTheMainQueueLetsGoOfIt) {
    auto buffer = std::make_unique<QByteArray>("payload");
    DispatchData data = createReferencingDispatchData(*buffer);
    EXPECT_FALSE(buffer->isDetached()); // shared with the data
    data = {};
    EXPECT_FALSE(buffer->isDetached()); // and with the job
    EXPECT_TRUE(waitUntil([&] { return buffer->isDetached(); }));
}

TEST(ReferencingData, keepsTheBytesOfABufferThatIsGone) {
    const DispatchData data = createReferencingDispatchData(QByteArray("payload"));
    EXPECT_EQ(data.toByteArray(), "payload");
}

TEST(ContentsOfData, areTheSameBytesNotACopy) {
    const DispatchData data = DispatchData::copying("abc");
    const auto contents = dataWithContentsOfDispatchData(data);
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->bytes().data(), data.bytes());
    EXPECT_EQ(contents->bytes().size(), 3);
}

TEST(ContentsOfData, outliveTheData) {
    std::optional<DispatchData> data = DispatchData::copying("ab");
    data->append(DispatchData::copying("c"));
    const auto contents = dataWithContentsOfDispatchData(data);
    data.reset();
    EXPECT_EQ(contents->bytes().toByteArray(), "abc");
}

TEST(ContentsOfData, areNothingForNoData) {
    EXPECT_FALSE(dataWithContentsOfDispatchData(std::nullopt));
    EXPECT_FALSE(dictionaryWithContentsOfDispatchData(std::nullopt));
}

const QVariantMap kDictionary = {{QStringLiteral("identifier"), QStringLiteral("E1A5")},
                                 {QStringLiteral("line"), 12}};

TEST(DictionaryPayload, isABinaryPropertyList) {
    const auto data = createReferencingDispatchData(kDictionary);
    ASSERT_TRUE(data);
    EXPECT_TRUE(data->toByteArray().startsWith("bplist00"));
}

TEST(DictionaryPayload, comesBackAsItWas) {
    const auto value =
        dictionaryWithContentsOfDispatchData(createReferencingDispatchData(kDictionary));
    ASSERT_TRUE(value);
    const QVariantMap dictionary = value->toMap();
    EXPECT_EQ(dictionary.size(), 2);
    EXPECT_EQ(dictionary.value(QStringLiteral("identifier")), QStringLiteral("E1A5"));
    EXPECT_EQ(dictionary.value(QStringLiteral("line")).toInt(), 12);
}

TEST(DictionaryPayload, comesBackFromDataInSeveralPieces) {
    const QByteArray bytes = createReferencingDispatchData(kDictionary)->toByteArray();
    const DispatchData pieces =
        concatenated(DispatchData::copying(QByteArrayView(bytes).first(9)),
                     DispatchData::copying(QByteArrayView(bytes).sliced(9)));
    EXPECT_EQ(dictionaryWithContentsOfDispatchData(pieces)->toMap().size(), 2);
}

TEST(DictionaryPayload, mayBeXML) {
    const DispatchData data = DispatchData::copying(
        R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>identifier</key><string>E1A5</string></dict></plist>)");
    const auto value = dictionaryWithContentsOfDispatchData(data);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->toMap().value(QStringLiteral("identifier")), QStringLiteral("E1A5"));
}

TEST(DictionaryPayload, isWhateverThePeerSentAndNotVerifiedToBeADictionary) {
    const DispatchData data = DispatchData::copying("(a, b)");
    const auto value = dictionaryWithContentsOfDispatchData(data);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->toList().size(), 2);
}

TEST(DictionaryPayload, ofBytesThatAreNoPropertyListIsNothing) {
    EXPECT_FALSE(dictionaryWithContentsOfDispatchData(DispatchData::copying("bplist00 not one")));
    EXPECT_FALSE(dictionaryWithContentsOfDispatchData(DispatchData::copying("\x01\x02\x03")));
}

TEST(DictionaryPayload, thatCannotBeWrittenIsLoggedAndNothing) {
    QStringList messages;
    const LogReceiver previous = setLogReceiver([&](const QString& m) { messages.append(m); });
    const QVariantMap dictionary = {{QStringLiteral("place"), QPoint(1, 2)}};
    EXPECT_FALSE(createReferencingDispatchData(dictionary));
    setLogReceiver(previous);

    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.first().startsWith(
        QStringLiteral("Failed to serialize property list: Error Domain=PropertyListError")))
        << messages.first().toStdString();
}

TEST(PTData, holdsItsBytesAndDescribesItself) {
    const DispatchData bytes = DispatchData::copying("abc");
    const PTData data(bytes, bytes.bytes(), bytes.size());
    EXPECT_EQ(data.dispatchData()->bytes(), data.data());
    EXPECT_EQ(data.length(), 3U);
    EXPECT_EQ(data.description(),
              QString::asprintf("<PTData: %p (3 bytes)>", static_cast<const void*>(&data)));
}

} // namespace
} // namespace navrel
