#include "scanning/QWFileReader.h"
#include "tests/scanning/ScratchFolder.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The scans of the line reader: which calls its blocks get.
class LineScan : public ::testing::Test {
protected:
    std::vector<QByteArray> superclasses(const QByteArray& name, const QByteArray& content,
                                         bool isForSwift = false) {
        std::vector<QByteArray> calls;
        auto reader = QWFileReader::initWithFilePath(folder_.write(name, content));
        const auto block = [&calls](QByteArrayView superclass) {
            calls.push_back(superclass.toByteArray());
        };
        isForSwift ? reader->findSuperclassForSwiftUsingBlock(block)
                   : reader->findSuperclassUsingBlock(block);
        offset_ = reader->currentOffset();
        return calls;
    }

    std::vector<std::string> shortcuts(const QByteArray& content) {
        std::vector<std::string> calls;
        const QByteArray path = folder_.write("file.c", content);
        QWFileReader::initWithFilePath(path)->findShortcutsUsingBlock(
            [&](const std::optional<ShortcutRecord>& record, bool finished) {
                EXPECT_EQ(finished, !record.has_value());
                if (record) {
                    EXPECT_EQ(record->path, path);
                    calls.push_back(std::to_string(record->line) + " " +
                                    record->shortcut.toStdString());
                } else {
                    calls.emplace_back("finished");
                }
            });
        return calls;
    }

    ScratchFolder folder_;
    quint64 offset_ = 0;
};

TEST_F(LineScan, theSuperclassBlockIsCalledOnceAndLaterLinesAreNotRead) {
    const QByteArray first = "#import \"A.h\"\n@interface Foo : A\n";
    EXPECT_THAT(superclasses("Foo.h", first + "@interface Foo : B\n"), ElementsAre("A"));
    EXPECT_EQ(offset_, quint64(first.size()));
}

TEST_F(LineScan, theSuperclassMayBeTheEmptyText) {
    EXPECT_THAT(superclasses("Foo.h", "@interface Foo : _A\n@interface Foo : B\n"),
                ElementsAre(""));
}

TEST_F(LineScan, withoutASuperclassTheBlockIsNeverCalled) {
    EXPECT_THAT(superclasses("Foo.h", "@interface Foo ()\n"), IsEmpty());
    EXPECT_THAT(superclasses("Foo.h", ""), IsEmpty());
    EXPECT_THAT(superclasses("(.h", "@interface ( : A\n"), IsEmpty());
}

TEST_F(LineScan, theSuperclassScanForSwiftHasTheSamePattern) {
    EXPECT_THAT(superclasses("Foo.swift", "class Foo: A\n@interface Foo : B\n", true),
                ElementsAre("B"));
}

TEST_F(LineScan, aLineThatIsNotUTF8EndsTheSuperclassScan) {
    EXPECT_THAT(superclasses("Foo.h", "\xA9\n@interface Foo : A\n"), IsEmpty());
}

TEST_F(LineScan, aBaseNameThatBacktracksWithoutEndEndsTheSuperclassScan) {
    const QByteArray line = "@interface " + QByteArray(40, 'a') + " : A\n";
    EXPECT_THAT(superclasses("(a+)+b.h", line.repeated(10)), IsEmpty());
    EXPECT_LT(offset_, quint64(line.size() * 10));
}

TEST_F(LineScan, aSuperclassFarBehindManyLinesIsFound) {
    const QByteArray lines = QByteArray("- (void)a:(int)b;\n").repeated(100'000);
    EXPECT_THAT(superclasses("Foo.h", lines + "@interface Foo : A\n"), ElementsAre("A"));
    EXPECT_THAT(superclasses("Foo+Bar.h", lines + "@interface FoooBar : A\n"), ElementsAre("A"));
}

TEST_F(LineScan, theShortcutBlockIsCalledForEachRecordAndAtTheEnd) {
    EXPECT_THAT(shortcuts("//navrel:a\n\nx // NAVREL:  b  \r\n// navrel:\n"),
                ElementsAre("1 a", "3 b  ", "finished"));
    EXPECT_THAT(shortcuts("int a;\n"), ElementsAre("finished"));
    EXPECT_THAT(shortcuts(""), ElementsAre("finished"));
}

TEST_F(LineScan, theLastShortcutOfALineIsTheRecord) {
    EXPECT_THAT(shortcuts("//navrel:a\r//navrel:b\r//navrel:"), ElementsAre("1 b", "finished"));
}

TEST_F(LineScan, aLineThatIsNotUTF8EndsTheShortcutScanWithItsFinalCall) {
    EXPECT_THAT(shortcuts("//navrel:a\n\xE9\n//navrel:b\n"), ElementsAre("1 a", "finished"));
}

} // namespace
} // namespace navrel
