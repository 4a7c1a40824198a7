#include "scanning/QWFileReader.h"
#include "tests/scanning/FindingsText.h"
#include "tests/scanning/ScratchFolder.h"
#include "tests/scanning/TellingTexts.h"
#include "tests/scanning/plain/PlainScan.h"

#include <QFile>
#include <QRandomGenerator>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

// The scans of the line reader held against the patterns, with bytes that are not UTF-8 at all
// places where the reader could mistake them: ends of lines, of chunks and of its buffer.
namespace navrel {
namespace {

constexpr qsizetype kChunk = 10;
constexpr qsizetype kBuffer = qsizetype(64) * 1024;

const std::vector<QByteArray>& invalidSequences() {
    static const std::vector<QByteArray> kSequences = {
        // Continuations without a beginning, or behind a character.
        "\x80", "\xA9", "\xBF\xBF", "\xC3\xA9\xA9",
        // Overlong forms.
        "\xC0\xAF", "\xC1\x81", "\xE0\x80\x80", "\xF0\x8F\xBF\xBF",
        // Characters cut off.
        "\xC3", "\xE2\x82", "\xF0\x9F\x99",
        // A surrogate, a value above U+10FFFF, and bytes that no character has.
        "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"};
    return kSequences;
}

class LineScanEquality : public ::testing::Test {
protected:
    /// What the reader finds, as `linesOf` puts it.
    std::vector<std::string> linesOfReader(const TellingText& source) {
        const QByteArray name = source.path.sliced(source.path.lastIndexOf('/') + 1);
        const QByteArray path = folder_.write(name, source.text);
        std::vector<std::string> lines;
        if (SourceName(path).kind() == SourceKind::Header) {
            QWFileReader::initWithFilePath(path)->findSuperclassUsingBlock(
                [&lines](QByteArrayView superclass) {
                    lines.push_back("superclass " + superclass.toByteArray().toStdString());
                });
        }
        QWFileReader::initWithFilePath(path)->findShortcutsUsingBlock(
            [&lines](const std::optional<ShortcutRecord>& record, bool) {
                if (record) {
                    lines.push_back("shortcut comment " + std::to_string(record->line) + " " +
                                    record->shortcut.toStdString());
                }
            });
        QFile::remove(QFile::decodeName(path)); // writing over a file may wait for the disk
        return lines;
    }

    /// The same by the patterns, which find elements too.
    std::vector<std::string> linesOfPatterns(const TellingText& source) {
        EXPECT_EQ(plain_.scan(source.text, SourceName(source.path), *findings_, std::nullopt),
                  std::nullopt);
        std::vector<std::string> lines = linesOf(*findings_);
        std::size_t elements = 0;
        findings_->visitElements([&elements](const SourceElement&) { ++elements; });
        lines.resize(lines.size() - elements);
        return lines;
    }

    void expectEqual(const TellingText& source) {
        const std::vector<std::string> expected = linesOfPatterns(source);
        count_ += expected.size();
        ASSERT_EQ(linesOfReader(source), expected)
            << source.path.constData() << " " << readable(source.text.right(200)).constData();
    }

    ScratchFolder folder_;
    PlainScan plain_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();
    std::size_t count_ = 0; ///< of findings that were compared
};

/// A text of that length, of lines of a few bytes; of longer ones, which are searched faster,
/// where it is long.
QByteArray linesOfLength(qsizetype length) {
    const QByteArray line = QByteArray("int a;").repeated(length < kBuffer / 2 ? 1 : 100) + '\n';
    return line.repeated(length / line.size() + 1).right(length);
}

/// Sources with an invalid sequence at an offset of at least 32, behind a line that holds a
/// finding: at its line's beginning, in its midst and at its end.
std::array<TellingText, 3> sourcesWithSequenceAt(qsizetype offset, const QByteArray& sequence) {
    const QByteArray found = "@interface Foo : A\n//navrel:a\n";
    const QByteArray foundWithin = "@interface Bar : A\n//navrel:a\nx";
    const QByteArray behind = "\n//navrel:b\n@interface Foo : B\n";
    const QByteArray before = linesOfLength(offset - found.size()) + found;
    const QByteArray within = linesOfLength(offset - foundWithin.size()) + foundWithin;
    return {{{"/p/Foo.h", before + sequence + behind},
             {"/p/Foo.h", within + sequence + "x" + behind},
             {"/p/Foo.h", within + sequence + behind}}};
}

TEST_F(LineScanEquality, invalidBytesAtTheEndsOfChunksEndTheScansAtTheirLine) {
    for (const QByteArray& sequence : invalidSequences()) {
        for (qsizetype offset = 32; offset < 32 + 2 * kChunk; ++offset) {
            for (const TellingText& source : sourcesWithSequenceAt(offset, sequence)) {
                expectEqual(source);
            }
        }
    }
    EXPECT_EQ(count_, invalidSequences().size() * 2 * kChunk * 4);
}

TEST_F(LineScanEquality, invalidBytesAtTheEndOfTheBufferEndTheScansAtTheirLine) {
    for (const QByteArray& sequence : invalidSequences()) {
        for (qsizetype offset = kBuffer - 5; offset <= kBuffer + 1; ++offset) {
            for (const TellingText& source : sourcesWithSequenceAt(offset, sequence)) {
                expectEqual(source);
            }
        }
    }
    EXPECT_EQ(count_, invalidSequences().size() * 7 * 4);
}

TEST_F(LineScanEquality, invalidBytesAtTheEndOfTheFileEndTheScansAtTheirLine) {
    for (const QByteArray& sequence : invalidSequences()) {
        expectEqual({"/p/Foo.h", "//navrel:a\n" + sequence});
        expectEqual({"/p/Foo.h", "//navrel:a\n//navrel:b" + sequence});
    }
    EXPECT_EQ(count_, invalidSequences().size() * 2);
}

TEST_F(LineScanEquality, randomTextsOfTellingPiecesGiveWhatThePatternsGive) {
    constexpr int kRounds = 3000;
    QRandomGenerator random(5);
    for (int round = 0; round < kRounds; ++round) {
        TellingText source = makeTellingText(random);
        for (quint32 strays = random.bounded(3U); strays > 0; --strays) {
            const auto& sequences = invalidSequences();
            source.text.insert(qsizetype(random.bounded(quint32(source.text.size()) + 1)),
                               sequences[random.bounded(quint32(sequences.size()))]);
        }
        expectEqual(source);
    }
    EXPECT_GT(count_, std::size_t(kRounds / 20));
}

} // namespace
} // namespace navrel
