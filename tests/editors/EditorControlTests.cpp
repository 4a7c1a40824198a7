// The data manager and the editor: what reaches it, and what comes of its answers.

#include "tests/project/DataManagerFixture.h"

#include <limits>

namespace navrel {
namespace {

class EditorControl : public DataManagerTest {
protected:
    /// The line that the editor is given for one that came from a device.
    std::optional<int> lineFor(const QVariant& line) {
        editor.opened.clear();
        manager().openFile(QStringLiteral("/a.m"), line);
        if (editor.opened.size() != 1) {
            ADD_FAILURE() << editor.opened.size() << " requests reached the editor";
            return std::nullopt;
        }
        EXPECT_EQ(editor.opened.front().path, QStringLiteral("/a.m"));
        return editor.opened.front().line;
    }
    std::optional<int> lineFor(const char* text) { return lineFor(QString::fromUtf8(text)); }
};

TEST_F(EditorControl, aNumberAndItsTextAreTheSameLine) {
    EXPECT_EQ(lineFor(42), 42);
    EXPECT_EQ(lineFor("42"), 42);
    EXPECT_EQ(lineFor(QVariant(qlonglong(42))), 42);
    EXPECT_EQ(lineFor(42.9), 42);
    EXPECT_EQ(lineFor(true), 1);
}

TEST_F(EditorControl, negativeLinesArePassedOn) {
    EXPECT_EQ(lineFor(-7), -7);
    EXPECT_EQ(lineFor("-7"), -7);
    EXPECT_EQ(lineFor(-7.9), -7);
}

TEST_F(EditorControl, aTextIsReadAsFarAsItIsANumber) {
    EXPECT_EQ(lineFor(" \t12 lines"), 12);
    EXPECT_EQ(lineFor("+3"), 3);
    EXPECT_EQ(lineFor("4.9"), 4);
    EXPECT_EQ(lineFor("0x10"), 0);
    EXPECT_EQ(lineFor(""), 0);
    EXPECT_EQ(lineFor("-"), 0);
    EXPECT_EQ(lineFor("- 5"), 0);
    EXPECT_EQ(lineFor("first"), 0);
}

TEST_F(EditorControl, aTextThatDoesNotFitBecomesTheNearestLine) {
    constexpr int kLargest = std::numeric_limits<int>::max();
    constexpr int kSmallest = std::numeric_limits<int>::min();
    EXPECT_EQ(lineFor("2147483647"), kLargest);
    EXPECT_EQ(lineFor("2147483648"), kLargest);
    EXPECT_EQ(lineFor("99999999999999999999999999"), kLargest);
    EXPECT_EQ(lineFor("-2147483648"), kSmallest);
    EXPECT_EQ(lineFor("-99999999999999999999999999"), kSmallest);
}

TEST_F(EditorControl, anIntegerThatDoesNotFitKeepsItsLowBits) {
    EXPECT_EQ(lineFor(QVariant(qlonglong(1) << 32 | 5)), 5);
    EXPECT_EQ(lineFor(QVariant(qlonglong(4294967295))), -1);
    EXPECT_EQ(lineFor(QVariant(std::numeric_limits<qulonglong>::max())), -1);
}

TEST_F(EditorControl, aRealNumberThatDoesNotFitBecomesTheNearestLine) {
    EXPECT_EQ(lineFor(1e300), std::numeric_limits<int>::max());
    EXPECT_EQ(lineFor(-1e300), std::numeric_limits<int>::min());
    EXPECT_EQ(lineFor(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_F(EditorControl, withoutALineTheFileIsOpenedWithoutOne) {
    EXPECT_EQ(lineFor(QVariant()), std::nullopt);
    EXPECT_EQ(lineFor(QVariant(QVariantList{1})), std::nullopt);
    EXPECT_EQ(lineFor(QVariant(QByteArray("1"))), std::nullopt);
}

TEST_F(EditorControl, withoutAPathOnlyTheLineIsSelected) {
    manager().openFile(std::nullopt, QStringLiteral("42"));
    EXPECT_EQ(editor.selectedLines, std::vector{42});
    manager().openFile(std::nullopt, QVariant());
    EXPECT_EQ(editor.selectedLines, std::vector{42});
    EXPECT_TRUE(editor.opened.empty());
}

TEST_F(EditorControl, anEmptyPathIsPassedOn) {
    manager().openFile(QStringLiteral(""), 7);
    EXPECT_EQ(editor.opened, (std::vector<FakeEditor::Opened>{{QStringLiteral(""), 7}}));
    EXPECT_TRUE(editor.selectedLines.empty());
}

TEST_F(EditorControl, theActiveFilesRecordIsFoundByItsName) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    editor.fileName = QStringLiteral("a.m");
    EXPECT_EQ(manager().objectIDForActiveFile(), QStringLiteral("A"));
}

TEST_F(EditorControl, ofTwoFilesOfOneNameNoneIsActive) {
    writeFile("x/a.m");
    writeFile("y/a.m");
    load(ProjectText().group("MAIN", {"A", "B"}).file("A", "x/a.m").file("B", "y/a.m"));
    editor.fileName = QStringLiteral("a.m");
    EXPECT_EQ(manager().objectIDForActiveFile(), std::nullopt);
}

TEST_F(EditorControl, anEditorWithoutAFileAndOneThatCannotBeAskedHaveNoActiveRecord) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    for (const std::optional<QString>& answer :
         {std::optional(QStringLiteral("")), std::optional(QStringLiteral("b.m")),
          std::optional<QString>()}) {
        editor.fileName = answer;
        EXPECT_EQ(manager().objectIDForActiveFile(), std::nullopt);
    }
}

} // namespace
} // namespace navrel
