#include "scanning/ScanningOperations.h"
#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFileScanner.h"
#include "tests/project/OpenStore.h"
#include "tests/scanning/ScratchFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SourceFileScannerTest : public ::testing::Test {
protected:
    CDObject& objectFor(const QByteArray& path, const QByteArray& identifier = "F1") {
        CDObject& object = store_->insertObject();
        object.setIdentifier(identifier);
        object.setPath(path);
        return object;
    }

    CDObject& objectWith(const QByteArray& name, const QByteArray& content) {
        return objectFor(folder_.write(name, content));
    }

    void scan(CDObject& object) {
        const SourceFindings& findings = scanner_.scan(object.path());
        setSuperclassForManagedObject(object, findings);
        generateShortcutsForManagedObject(object, findings, *store_);
        generateElementsForManagedObject(object, findings, *store_);
    }

    std::vector<QByteArray> elementNames() const {
        std::vector<QByteArray> names;
        for (const CDElement* element : store_->elements()) {
            names.push_back(element->name().value());
        }
        return names;
    }

    ScratchFolder folder_;
    OpenStore store_{QString::fromUtf8(folder_.path("store"))};
    SourceFileScanner scanner_;
};

TEST_F(SourceFileScannerTest, theSuperclassOfAHeaderIsSet) {
    CDObject& object = objectWith("Foo.h", "@interface Foo : NSObject\n");
    scan(object);
    EXPECT_EQ(object.subclassOf(), "NSObject");
}

TEST_F(SourceFileScannerTest, anEmptySuperclassIsStoredAsItIs) {
    CDObject& object = objectWith("Foo.h", "@interface Foo : _Base\n");
    scan(object);
    ASSERT_TRUE(object.subclassOf().has_value());
    EXPECT_FALSE(object.subclassOf()->isNull());
    EXPECT_EQ(object.subclassOf(), "");
}

TEST_F(SourceFileScannerTest, withoutASuperclassTheFormerOneStays) {
    CDObject& object = objectWith("Foo.h", "int a;\n");
    object.setSubclassOf("Old");
    scan(object);
    EXPECT_EQ(object.subclassOf(), "Old");
}

TEST_F(SourceFileScannerTest, aRecordIsInsertedForEachShortcut) {
    CDObject& object = objectWith("a.c", "//navrel:One\n\n// navrel: Two\n");
    object.setName("a.c");
    scan(object);
    const auto shortcuts = store_->shortcuts();
    ASSERT_EQ(shortcuts.size(), 2U);
    EXPECT_EQ(shortcuts[0]->identifier(), "F1");
    EXPECT_EQ(shortcuts[0]->path(), folder_.path("a.c"));
    EXPECT_EQ(shortcuts[0]->line(), 1);
    EXPECT_EQ(shortcuts[0]->shortcut(), "One");
    EXPECT_EQ(shortcuts[0]->name(), std::nullopt);
    EXPECT_EQ(shortcuts[1]->line(), 3);
    EXPECT_EQ(shortcuts[1]->shortcut(), "Two");
}

TEST_F(SourceFileScannerTest, aRecordIsInsertedForEachElement) {
    scan(objectWith("a.m", "\n- (void)b {\n#warning c\n"));
    const auto elements = store_->elements();
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0]->identifier(), "F1");
    EXPECT_EQ(elements[0]->path(), folder_.path("a.m"));
    EXPECT_EQ(elements[0]->type(), "method");
    EXPECT_EQ(elements[0]->name(), "-b");
    EXPECT_EQ(elements[0]->line(), 2);
    EXPECT_EQ(elements[1]->type(), "warning");
    EXPECT_EQ(elements[1]->name(), "c");
}

TEST_F(SourceFileScannerTest, everyTypeHasItsName) {
    scan(objectWith("a.swift", "class A\nfunc b\n// MARK: c\n#warning d\n// navrel: e\nvar f"));
    std::vector<QByteArray> types;
    for (const CDElement* element : store_->elements()) {
        types.push_back(element->type().value());
    }
    EXPECT_THAT(types, ElementsAre("class", "method", "mark", "warning", "shortcut", "property"));
}

TEST_F(SourceFileScannerTest, olderRecordsAreTheCallersToDelete) {
    CDObject& object = objectWith("a.swift", "var a\n//navrel:s");
    scan(object);
    scan(object);
    EXPECT_THAT(elementNames(), ElementsAre("a", "a"));
    EXPECT_EQ(store_->shortcuts().size(), 2U);
}

TEST_F(SourceFileScannerTest, everyScanReadsTheFileAgain) {
    CDObject& object = objectWith("a.swift", "var a");
    scan(object);
    folder_.write("a.swift", "var b");
    scan(object);
    EXPECT_THAT(elementNames(), ElementsAre("a", "b"));
}

TEST_F(SourceFileScannerTest, whatTheStoreHasNoRoomForIsLeftOut) {
    CDObject& object = objectWith("a.swift", "var a\nvar b\n//navrel:c\n//navrel:d\n");
    for (std::size_t size = 1; size < kMaximumElements; ++size) {
        store_->insertElement();
    }
    for (std::size_t size = 1; size < kMaximumShortcuts; ++size) {
        store_->insertShortcut();
    }
    scan(object);
    EXPECT_EQ(store_->elements().size(), kMaximumElements);
    EXPECT_EQ(store_->elements().back()->name(), "a");
    EXPECT_EQ(store_->shortcuts().size(), kMaximumShortcuts);
    EXPECT_EQ(store_->shortcuts().back()->line(), 3);
}

TEST_F(SourceFileScannerTest, whatCannotBeReadHoldsNothing) {
    ASSERT_EQ(::mkfifo(folder_.path("pipe.h").constData(), 0600), 0);
    for (const QByteArray& path :
         {folder_.path("missing.h"), folder_.path("pipe.h"), folder_.path(""),
          folder_.write("a.h", "//navrel:a\n- (void)a;") + QByteArray(1, '\0'), QByteArray("")}) {
        scan(objectFor(path));
    }
    CDObject& withoutPath = store_->insertObject();
    scan(withoutPath);
    EXPECT_EQ(withoutPath.subclassOf(), std::nullopt);
    EXPECT_THAT(store_->shortcuts(), IsEmpty());
    EXPECT_THAT(store_->elements(), IsEmpty());
}

TEST_F(SourceFileScannerTest, anUnreadableFileDoesNotShowTheOneBefore) {
    CDObject& object = objectWith("a.swift", "var a\n//navrel:s");
    scan(object);
    scan(objectFor(folder_.path("missing.swift")));
    EXPECT_THAT(elementNames(), ElementsAre("a"));
    EXPECT_EQ(store_->shortcuts().size(), 1U);
}

TEST_F(SourceFileScannerTest, aFileTooLargeForMemoryHoldsNothing) {
    CDObject& object = objectWith("a.swift", "var a\n");
    folder_.truncate("a.swift", kLargestSource + 1);
    scan(object);
    EXPECT_THAT(elementNames(), IsEmpty());
    folder_.truncate("a.swift", kLargestSource);
    scan(object);
    EXPECT_THAT(elementNames(), ElementsAre("a"));
}

TEST_F(SourceFileScannerTest, smallFilesFollowLargeOnes) {
    scan(objectWith("a.swift", "var a\n" + QByteArray(3 << 20, ' ') + "let b"));
    scan(objectWith("b.swift", "var c"));
    scan(objectWith("c.swift", ""));
    EXPECT_THAT(elementNames(), ElementsAre("a", "b", "c"));
}

} // namespace
} // namespace navrel
