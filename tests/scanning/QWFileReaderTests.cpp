#include "scanning/QWFileReader.h"
#include "support/text/FilePath.h"
#include "tests/OrdinaryUser.h"
#include "tests/scanning/ScratchFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Lines = std::vector<QByteArray>;

class QWFileReaderTest : public ::testing::Test {
protected:
    std::unique_ptr<QWFileReader> readerOf(const QByteArray& content) {
        auto reader = QWFileReader::initWithFilePath(folder_.write("file.h", content));
        EXPECT_NE(reader, nullptr);
        return reader;
    }

    static Lines remainingLines(QWFileReader& reader) {
        Lines lines;
        reader.enumerateLinesUsingBlock(
            [&lines](QByteArrayView line, bool&) { lines.push_back(line.toByteArray()); });
        return lines;
    }

    Lines linesOf(const QByteArray& content) { return remainingLines(*readerOf(content)); }

    Lines linesOf(const QByteArray& content, const QByteArray& delimiter, quint64 chunkSize) {
        auto reader = readerOf(content);
        reader->setLineDelimiter(delimiter);
        reader->setChunkSize(chunkSize);
        return remainingLines(*reader);
    }

    ScratchFolder folder_;
};

TEST_F(QWFileReaderTest, aNewReaderHasItsDefaults) {
    const auto reader = readerOf("abc");
    EXPECT_EQ(reader->filePath(), folder_.path("file.h"));
    EXPECT_EQ(reader->currentOffset(), 0U);
    EXPECT_EQ(reader->totalFileLength(), 3U);
    EXPECT_EQ(reader->lineDelimiter(), "\n");
    EXPECT_EQ(reader->chunkSize(), 10U);
}

TEST_F(QWFileReaderTest, linesComeWithTheirDelimiter) {
    auto reader = readerOf("a\nb");
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->currentOffset(), 2U);
    EXPECT_EQ(reader->readLine(), "b");
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->currentOffset(), 3U);
}

TEST_F(QWFileReaderTest, anEmptyFileHasNoLine) {
    auto reader = readerOf("");
    EXPECT_EQ(reader->totalFileLength(), 0U);
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

TEST_F(QWFileReaderTest, anEmptyLineIsJustItsDelimiter) {
    EXPECT_THAT(linesOf("a\n\n"), ElementsAre("a\n", "\n"));
}

TEST_F(QWFileReaderTest, aLineLongerThanAChunkIsReturnedWhole) {
    EXPECT_THAT(linesOf("0123456789abcdefghij\nx\n"), ElementsAre("0123456789abcdefghij\n", "x\n"));
    EXPECT_THAT(linesOf("0123456789\nx"), ElementsAre("0123456789\n", "x"));
    EXPECT_THAT(linesOf("012345678\nx"), ElementsAre("012345678\n", "x"));
}

TEST_F(QWFileReaderTest, linesOfEveryLengthEndAtTheirFirstDelimiter) {
    Lines expected;
    QByteArray content;
    for (qsizetype length = 0; length < 200; ++length) {
        expected.push_back(QByteArray(length, 'x') + '\n');
        content += expected.back();
    }
    EXPECT_EQ(linesOf(content), expected);
    EXPECT_EQ(linesOf(content.chopped(1)).back(), QByteArray(199, 'x'));
}

TEST_F(QWFileReaderTest, linesAcrossTheBufferAreWhole) {
    Lines lines;
    QByteArray content;
    for (int length : {65530, 3, 10, 200000, 0, 65535, 65536, 1}) {
        lines.push_back(QByteArray(length, 'x') + '\n');
        content += lines.back();
    }
    EXPECT_EQ(linesOf(content), lines);
}

TEST_F(QWFileReaderTest, charactersAcrossChunksAndBuffersAreWhole) {
    QByteArray line;
    while (line.size() < 70000) {
        line += "\xE2\x82\xAC\xF0\x9F\x99\x82\xC3\xA9"; // nine bytes, so that every boundary is met
    }
    EXPECT_THAT(linesOf(line + "\n" + line), ElementsAre(line + "\n", line));
}

TEST_F(QWFileReaderTest, carriageReturnsStayInTheLine) {
    EXPECT_THAT(linesOf("a\r\nb\r\n"), ElementsAre("a\r\n", "b\r\n"));
    EXPECT_THAT(linesOf("a\rb\rc"), ElementsAre("a\rb\rc"));
}

TEST_F(QWFileReaderTest, nulBytesAndTheByteOrderMarkAreCharacters) {
    const QByteArray content("\xEF\xBB\xBF"
                             "a\0b\n",
                             7);
    EXPECT_THAT(linesOf(content), ElementsAre(content));
}

TEST_F(QWFileReaderTest, aTrimmedLineHasNoWhiteSpaceAtItsEnds) {
    auto reader = readerOf("  x \n\n\t\xC2\xA0\xE2\x80\xA8 a b\x0B\x0C\r\n");
    EXPECT_EQ(reader->readTrimmedLine(), "x");
    const auto empty = reader->readTrimmedLine();
    ASSERT_TRUE(empty.has_value());
    EXPECT_EQ(empty->size(), 0);
    EXPECT_EQ(reader->readTrimmedLine(), "a b");
    EXPECT_EQ(reader->readTrimmedLine(), std::nullopt);
}

TEST_F(QWFileReaderTest, trimmingKeepsAByteOrderMark) {
    EXPECT_EQ(readerOf(" \xEF\xBB\xBFx \n")->readTrimmedLine(), "\xEF\xBB\xBFx");
}

TEST_F(QWFileReaderTest, aBlockThatStopsIsCalledOnce) {
    int calls = 0;
    readerOf("a\nb\nc\n")->enumerateLinesUsingBlock([&calls](QByteArrayView, bool& stop) {
        EXPECT_FALSE(stop);
        ++calls;
        stop = true;
    });
    EXPECT_EQ(calls, 1);
}

TEST_F(QWFileReaderTest, aLineThatIsNotUTF8EndsTheLines) {
    EXPECT_THAT(linesOf("a\nb\xE9\nc\n"), ElementsAre("a\n"));
    EXPECT_THAT(linesOf("a\n\xC0\xAF\nc\n"), ElementsAre("a\n"));
    EXPECT_THAT(linesOf("\xED\xA0\x80"), IsEmpty());
    EXPECT_THAT(linesOf("a\nb\xE2\x82\n"), ElementsAre("a\n"));
    EXPECT_THAT(linesOf(QByteArray(70000, 'x') + "\n" + QByteArray(70000, 'y') + "\xFF\nz\n"),
                ElementsAre(QByteArray(70000, 'x') + "\n"));
}

TEST_F(QWFileReaderTest, onlyTheLineThatIsNotUTF8IsNil) {
    auto reader = readerOf("a\nb\xE9\nc\n\xE9\xE9\n\xC3\xA9\n");
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), "c\n");
    EXPECT_EQ(reader->readTrimmedLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), "\xC3\xA9\n");
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

TEST_F(QWFileReaderTest, aLineBeforeAStrayByteIsReturned) {
    EXPECT_THAT(linesOf("a\n\xA9 1998\n"), ElementsAre("a\n"));
    auto reader = readerOf("a\n\x80\nc\n\xBF");
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), "c\n");
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

// Delimiters of several bytes: the chunks show.

TEST_F(QWFileReaderTest, aDelimiterOfSeveralBytesEndsALine) {
    EXPECT_THAT(linesOf("ab\r\ncd\nef\r\n", "\r\n", 100), ElementsAre("ab\r\n", "cd\nef\r\n"));
    EXPECT_THAT(linesOf("ab\r\ncd\nef\r\n", "\r\n", 4), ElementsAre("ab\r\n", "cd\nef\r\n"));
}

TEST_F(QWFileReaderTest, aDelimiterSplitAcrossChunksIsNotRecognisedAndItsHalfEndsTheLine) {
    EXPECT_THAT(linesOf("123456789\r\nabc\r\n", "\r\n", 10),
                ElementsAre("123456789\r", "\nabc\r\n"));
}

TEST_F(QWFileReaderTest, everyLineStartsAChunk) {
    // Counted from the line's start, the second delimiter lies within one chunk of four.
    EXPECT_THAT(linesOf("a\r\nbc\r\nd", "\r\n", 4), ElementsAre("a\r\n", "bc\r\n", "d"));
}

TEST_F(QWFileReaderTest, aSearchThatDoesNotBackUpMissesADelimiter) {
    EXPECT_THAT(linesOf("xaab\nyab\n", "ab", 100), ElementsAre("xaab\nyab", "\n"));
}

TEST_F(QWFileReaderTest, aLineThatEndsWithinACharacterIsNotUTF8) {
    // The delimiter is U+00E9; the chunk of two ends between its bytes.
    EXPECT_THAT(linesOf("a\xC3\xA9", "\xC3\xA9", 2), IsEmpty());
    EXPECT_THAT(linesOf("a\xC3\xA9", "\xC3\xA9", 3), ElementsAre("a\xC3\xA9"));
}

TEST_F(QWFileReaderTest, aLineThatBeginsWithinACharacterIsNotUTF8) {
    auto reader = readerOf("a\xC3\xA9z\xC3\xA9");
    reader->setLineDelimiter("\xC3\xA9");
    reader->setChunkSize(2);
    EXPECT_EQ(reader->readLine(), std::nullopt); // "a\xC3"
    EXPECT_EQ(reader->readLine(), std::nullopt); // "\xA9z\xC3\xA9"
    EXPECT_EQ(reader->currentOffset(), 6U);
}

TEST_F(QWFileReaderTest, anEmptyDelimiterMakesTheFileOneLine) {
    EXPECT_THAT(linesOf("a\nb\n", "", 10), ElementsAre("a\nb\n"));
}

TEST_F(QWFileReaderTest, chunksOfAnySizeGiveTheSameLinesForOneByte) {
    const QByteArray content = "first line\n\nsecond, rather longer line\nx";
    for (quint64 size : {quint64(1), quint64(3), quint64(10), quint64(100000),
                         std::numeric_limits<quint64>::max()}) {
        EXPECT_EQ(linesOf(content, "\n", size), linesOf(content)) << size;
    }
}

TEST_F(QWFileReaderTest, aChunkLargerThanTheFileHoldsAllItsLines) {
    EXPECT_THAT(linesOf("a\r\nb\r\nc", "\r\n", std::numeric_limits<quint64>::max()),
                ElementsAre("a\r\n", "b\r\n", "c"));
}

TEST_F(QWFileReaderTest, chunksOfNoBytesEndTheFile) {
    EXPECT_THAT(linesOf("a\nb\n", "\n", 0), IsEmpty());
    EXPECT_THAT(linesOf("a\r\nb\r\n", "\r\n", 0), IsEmpty());
}

// Files that change or are none.

TEST_F(QWFileReaderTest, aFileThatShrinksEndsWhereItsBytesEnd) {
    auto reader = readerOf("a\nbcd\n");
    folder_.truncate("file.h", 4);
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->readLine(), "bc");
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->totalFileLength(), 6U);
}

TEST_F(QWFileReaderTest, aFileThatShrinksToNothingHasNoLine) {
    auto reader = readerOf("a\nbcd\n");
    folder_.truncate("file.h", 0);
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

TEST_F(QWFileReaderTest, aFileThatGrowsEndsAtItsFirstLengthButForTheLastChunk) {
    auto reader = readerOf("a\nb");
    folder_.append("file.h", "cdefghijklmnop\nq\n");
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->readLine(), "bcdefghijk"); // one chunk of ten bytes
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

TEST_F(QWFileReaderTest, whatIsNoReadableFileGivesNoReader) {
    EXPECT_EQ(QWFileReader::initWithFilePath(folder_.path("missing.h")), nullptr);
    EXPECT_EQ(QWFileReader::initWithFilePath(folder_.path("")), nullptr);
    EXPECT_EQ(QWFileReader::initWithFilePath(QByteArrayLiteral("/dev/zero")), nullptr);
    EXPECT_EQ(QWFileReader::initWithFilePath(QByteArrayLiteral("")), nullptr);
}

TEST_F(QWFileReaderTest, aNamedPipeGivesNoReaderAndDoesNotBlock) {
    ASSERT_EQ(::mkfifo(folder_.path("pipe.h").constData(), 0600), 0);
    EXPECT_EQ(QWFileReader::initWithFilePath(folder_.path("pipe.h")), nullptr);
}

TEST_F(QWFileReaderTest, anUnreadableFileGivesNoReader) {
    const QByteArray path = folder_.write("secret.h", "a\n");
    ASSERT_EQ(::chmod(path.constData(), 0), 0);
    const OrdinaryUser user(QString::fromUtf8(deletingLastPathComponent(path)));
    EXPECT_EQ(QWFileReader::initWithFilePath(path), nullptr);
}

TEST_F(QWFileReaderTest, aPathWithANulByteNamesNoFile) {
    const QByteArray path = folder_.write("file.h", "a\n");
    EXPECT_NE(QWFileReader::initWithFilePath(path), nullptr);
    EXPECT_EQ(QWFileReader::initWithFilePath(path + QByteArray("\0x", 2)), nullptr);
}

TEST_F(QWFileReaderTest, aLineTooLongForMemoryEndsTheFile) {
    folder_.write("file.h", "a\n");
    folder_.truncate("file.h", kLargestSource + 3); // a sparse line of NUL bytes
    folder_.append("file.h", "\nb\n");
    auto reader = QWFileReader::initWithFilePath(folder_.path("file.h"));
    EXPECT_EQ(reader->readLine(), "a\n");
    EXPECT_EQ(reader->readLine(), std::nullopt);
    EXPECT_EQ(reader->readLine(), std::nullopt);
}

} // namespace
} // namespace navrel
