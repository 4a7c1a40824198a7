#include "support/propertylist/PropertyList.h"
#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListHash.h"
#include "support/propertylist/PropertyListIndex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace navrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Value = PropertyListDocument::Value;

const QByteArray kProject = R"(// !$*UTF8*$!
{
	objects = {
/* Begin PBXGroup section */
		016EA28EFFD974B8FFD140E3 /* Main */ = {
			isa = PBXGroup;
			children = (
				84F2877106D3AD27A8ED6583 /* main.m */,
				"Foo::Bar",
			);
			sourceTree = "<group>";
		};
		84F2877106D3AD27A8ED6583 /* main.m */ = {isa = PBXFileReference; path = "a\nb.m"; };
		"Foo::Bar" = {isa = PBXFileReference; data = <00>; };
	};
	rootObject = OBJ_1 /* Project object */;
}
)";

std::vector<std::string> textsOf(Value array) {
    std::vector<std::string> texts;
    for (const Value element : array.elements()) {
        texts.emplace_back(element.utf8());
    }
    return texts;
}

std::vector<std::string> keysOf(Value dictionary) {
    std::vector<std::string> keys;
    for (const auto [key, value] : dictionary.entries()) {
        keys.emplace_back(key.utf8());
    }
    return keys;
}

TEST(PropertyListDocument, valuesAreReachedByKeyAndInOrder) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read(kProject));

    const Value objects = document.root()["objects"];
    EXPECT_TRUE(objects.isDictionary());
    EXPECT_EQ(objects.count(), 3U);
    EXPECT_THAT(keysOf(objects),
                ElementsAre("016EA28EFFD974B8FFD140E3", "84F2877106D3AD27A8ED6583", "Foo::Bar"));
    const Value group = objects["016EA28EFFD974B8FFD140E3"];
    EXPECT_EQ(group["isa"].utf8(), "PBXGroup");
    EXPECT_EQ(group["sourceTree"].utf8(), "<group>");
    EXPECT_TRUE(group["children"].isArray());
    EXPECT_EQ(group["children"].count(), 2U);
    EXPECT_THAT(textsOf(group["children"]), ElementsAre("84F2877106D3AD27A8ED6583", "Foo::Bar"));
    EXPECT_EQ(document.root()["rootObject"].utf8(), "OBJ_1");
}

TEST(PropertyListDocument, whatIsNotThereIsAViewOfNothing) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read(kProject));

    const Value nothing = document.root()["absent"]["deeper"];
    EXPECT_FALSE(nothing);
    EXPECT_FALSE(nothing.isString() || nothing.isArray() || nothing.isDictionary());
    EXPECT_EQ(nothing.utf8(), "");
    EXPECT_EQ(nothing.count(), 0U);
    EXPECT_THAT(textsOf(nothing), IsEmpty());
    EXPECT_THAT(keysOf(nothing), IsEmpty());
    EXPECT_FALSE(nothing.toVariant().isValid());
    EXPECT_FALSE(document.root()["rootObject"]["key"]);
}

TEST(PropertyListDocument, aViewAnswersForItsOwnKindOnly) {
    PropertyListDocument document;
    ASSERT_TRUE(
        document.read("{ string = word; array = (a); dictionary = { a = b; }; data = <00>; }"));
    const Value root = document.root();

    EXPECT_TRUE(root["string"].isString());
    EXPECT_EQ(root["string"].count(), 0U);
    EXPECT_EQ(root["array"].utf8(), "");
    EXPECT_THAT(keysOf(root["array"]), IsEmpty());
    EXPECT_THAT(textsOf(root["dictionary"]), IsEmpty());
    EXPECT_TRUE(root["data"]);
    EXPECT_FALSE(root["data"].isString());
    EXPECT_EQ(root["data"].utf8(), "");
}

TEST(PropertyListDocument, escapesAreUndoneAndTheTextStaysWhereItIs) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ \"k\\145y\" = \"a\\nb\"; other = \"\\U00e9\"; }"));

    const std::string_view first = document.root()["key"].utf8();
    EXPECT_EQ(first, "a\nb");
    EXPECT_EQ(document.root()["other"].utf8(), "\xC3\xA9");
    EXPECT_EQ(document.root()["key"].utf8().data(), first.data());
}

TEST(PropertyListDocument, plainTextIsAViewIntoTheBytes) {
    const QByteArray bytes = "(word, \"two words\")";
    PropertyListDocument document;
    ASSERT_TRUE(document.read(bytes));

    EXPECT_EQ((*document.root().elements().begin()).utf8().data(), bytes.constData() + 1);
}

TEST(PropertyListDocument, theBytesLiveAsLongAsTheDocument) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read(QByteArray("{ a = ") + QByteArray(100, 'x') + "; }"));

    EXPECT_EQ(document.root()["a"].utf8(), std::string(100, 'x'));
}

TEST(PropertyListDocument, theLastOfRepeatedKeysWinsAndEachCounts) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ a = (1); a = 2; }"));

    EXPECT_EQ(document.root()["a"].utf8(), "2");
    EXPECT_EQ(document.root().count(), 2U);
    EXPECT_THAT(keysOf(document.root()), ElementsAre("a", "a"));
}

TEST(PropertyListDocument, readingAgainReplacesTheList) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ a = \"\\n\"; }"));
    EXPECT_EQ(document.root()["a"].utf8(), "\n");

    ASSERT_TRUE(document.read("{ a = \"\\t\"; }"));
    EXPECT_EQ(document.root()["a"].utf8(), "\t");
    EXPECT_EQ(document.valueCount(), 3U);
}

TEST(PropertyListDocument, aFailureLeavesItEmptyAndSaysWhere) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ a = b; }"));

    std::optional<Error> error;
    EXPECT_FALSE(document.read("{\n\ta = b\n}", &error));
    EXPECT_FALSE(document.root());
    EXPECT_EQ(document.valueCount(), 0U);
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->domain(), QStringLiteral("PropertyListError"));
    EXPECT_EQ(error->localizedDescription(),
              QStringLiteral("line 3, column 1: expected \";\" after a value"));
}

TEST(PropertyListDocument, aNewDocumentIsEmpty) {
    EXPECT_FALSE(PropertyListDocument().root());
}

TEST(PropertyListDocument, xmlGivesTheSameViews) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0"><dict>
	<key>objects</key><dict>
		<key>A1</key><dict><key>isa</key><string>PBXGroup</string>
			<key>children</key><array><string>B2</string><string>é &amp; c</string></array>
			<key>sourceTree</key><string>&lt;group&gt;</string></dict>
	</dict>
	<key>number</key><integer>7</integer>
	<key>rootObject</key><string>A1</string>
</dict></plist>)"));

    const Value group = document.root()["objects"]["A1"];
    EXPECT_EQ(group["isa"].utf8(), "PBXGroup");
    EXPECT_EQ(group["sourceTree"].utf8(), "<group>");
    EXPECT_THAT(textsOf(group["children"]), ElementsAre("B2", "\xC3\xA9 & c"));
    EXPECT_TRUE(document.root()["number"]);
    EXPECT_FALSE(document.root()["number"].isString());
    EXPECT_EQ(document.root()["rootObject"].utf8(), "A1");
}

TEST(PropertyListDocument, brokenXMLLeavesItEmptyAndSaysWhere) {
    PropertyListDocument document;
    std::optional<Error> error;

    EXPECT_FALSE(document.read("<?xml version=\"1.0\"?>\n<plist><dict></plist>", &error));
    EXPECT_FALSE(document.root());
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->localizedDescription()->startsWith(QStringLiteral("line 2, column ")));
}

TEST(PropertyListDocument, aListOfTwentyMegabytesIsRead) {
    QByteArray bytes = "{ objects = {\n";
    int objects = 0;
    for (; bytes.size() < 20'000'000; ++objects) {
        bytes += QByteArray::number(objects, 16).rightJustified(24, '0') +
                 " /* File.m */ = {isa = PBXFileReference; path = \"File.m\"; };\n";
    }
    PropertyListDocument document;
    ASSERT_TRUE(document.read(bytes + "}; }"));
    PropertyListIndex index;
    index.build(document.root()["objects"]);

    EXPECT_EQ(index.size(), static_cast<std::size_t>(objects));
    EXPECT_EQ(index.find("000000000000000000000a00")["path"].utf8(), "File.m");
}

TEST(PropertyListDocument, inTheWorstCaseAValueCostsAByte) {
    PropertyListDocument document;
    const QByteArray keys = "{" + QByteArray("a;").repeated(10'000) + "}";

    ASSERT_TRUE(document.read(keys));
    EXPECT_LE(document.valueCount(), static_cast<std::size_t>(keys.size()));
}

TEST(PropertyListIndex, findsEveryKeyAndNoOther) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read(kProject));
    PropertyListIndex index;
    index.build(document.root()["objects"]);

    EXPECT_EQ(index.size(), 3U);
    EXPECT_EQ(index.find("84F2877106D3AD27A8ED6583")["path"].utf8(), "a\nb.m");
    EXPECT_EQ(index.find("Foo::Bar")["isa"].utf8(), "PBXFileReference");
    EXPECT_FALSE(index.find("84F2877106D3AD27A8ED6584"));
    EXPECT_FALSE(index.find(""));
}

TEST(PropertyListIndex, keysOfEveryLengthAreTold) {
    QByteArray bytes = "{";
    for (int length = 0; length < 60; ++length) {
        for (const char last : {'a', 'b'}) {
            const QByteArray key = QByteArray(length, 'x') + last;
            bytes += key + " = \"" + key + "\";";
        }
    }
    PropertyListDocument document;
    ASSERT_TRUE(document.read(bytes + "\"\" = empty; }"));
    PropertyListIndex index;
    index.build(document.root());

    EXPECT_EQ(index.size(), 121U);
    for (const auto [key, value] : document.root().entries()) {
        EXPECT_EQ(index.find(key.utf8()).utf8(), value.utf8());
    }
    EXPECT_EQ(index.find("").utf8(), "empty");
}

TEST(PropertyListDocument, aByteOrderMarkIsPartOfTheTextThatBeginsWithIt) {
    const QVariantMap map{{QStringLiteral("\uFEFFkey"), QStringLiteral("\uFEFFvalue")}};
    for (const char* text :
         {"{\"\uFEFFkey\" = \"\uFEFFvalue\";}", "\uFEFF{\"\uFEFFkey\" = \"\uFEFFvalue\";}",
          "<plist><dict><key>\uFEFFkey</key><string>\uFEFFvalue</string></dict></plist>"}) {
        EXPECT_EQ(propertyListWithData(text), map) << text;
        PropertyListDocument document;
        ASSERT_TRUE(document.read(text)) << text;
        EXPECT_EQ(document.root()["\uFEFFkey"].utf8(), "\uFEFFvalue") << text;
        EXPECT_EQ(document.root().toVariant(), map) << text;
    }
}

TEST(PropertyListDocument, aListOfTooManyValuesIsRefusedHoweverItIsWritten) {
    for (const char* text : {"(a, b, c)", "{a = b; c;}", "{a = (b);}"}) {
        std::optional<Error> error;
        PropertyListDocument document(3);
        EXPECT_FALSE(document.read(text, &error)) << text;
        EXPECT_EQ(error->code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
        EXPECT_FALSE(document.root());
    }
    for (const char* body : {"<array><true/><true/><string>c</string></array>",
                             "<dict><key>a</key><true/><key>b</key><true/></dict>",
                             "<dict><key>a</key><array><array/></array></dict>"}) {
        std::optional<Error> error;
        PropertyListDocument document(3);
        EXPECT_FALSE(document.read("<plist>" + QByteArray(body) + "</plist>", &error)) << body;
        EXPECT_EQ(error->code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));
        EXPECT_FALSE(document.root());
    }
    PropertyListDocument document(3);
    EXPECT_TRUE(document.read("(a, b)"));
}

TEST(PropertyListDocument, aFileOfNothingButValuesTakesAsManyAsItMay) {
    std::optional<Error> error;
    PropertyListDocument document;
    const QByteArray keys = QByteArray("a;").repeated(qsizetype{32} << 20);
    EXPECT_FALSE(document.read("{" + keys + "}", &error));
    EXPECT_EQ(error->code(), static_cast<qint64>(PropertyListErrorCode::tooLarge));

    const auto fewer = static_cast<qsizetype>(kMaxPropertyListNodes) - 2;
    EXPECT_TRUE(document.read("{" + keys.first(fewer) + "}"));
    EXPECT_EQ(document.valueCount(), kMaxPropertyListNodes - 1);
}

TEST(PropertyListDocument, nodesGiveBackWhatAFarLargerListTook) {
    propertylist::NodeArray nodes;
    const auto fill = [&nodes](std::size_t count) {
        nodes.clear();
        while (nodes.size() < count) {
            ASSERT_TRUE(nodes.append({propertylist::NodeKind::string, nodes.size(), 1}));
        }
        nodes.trim();
    };
    fill(1'000'000);
    fill(500'000);
    EXPECT_GE(nodes.capacity(), 1'000'000U); // kept for the next reading
    fill(3);
    EXPECT_LE(nodes.capacity(), 128U << 10);
    EXPECT_EQ(nodes.at(2).position(), 2U);
    fill(1'000'000);
    nodes.clear();
    nodes.trim();
    EXPECT_EQ(nodes.capacity(), 0U);
    fill(2000);
    EXPECT_EQ(nodes.size(), 2000U);
}

TEST(PropertyListIndex, theLastOfRepeatedKeysWins) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ a = 1; b = 2; \"\\141\" = 3; }"));
    PropertyListIndex index;
    index.build(document.root());

    EXPECT_EQ(index.size(), 2U);
    EXPECT_EQ(index.find("a").utf8(), "3");
}

TEST(PropertyListIndex, buildingAgainForgetsTheOldKeys) {
    PropertyListDocument document;
    ASSERT_TRUE(document.read("{ one = { a = 1; }; two = { b = 2; }; three = word; }"));
    PropertyListIndex index;
    index.build(document.root()["one"]);
    index.build(document.root()["two"]);
    EXPECT_FALSE(index.find("a"));
    EXPECT_EQ(index.find("b").utf8(), "2");

    index.build(document.root()["three"]);
    EXPECT_EQ(index.size(), 0U);
    EXPECT_FALSE(index.find("b"));
    EXPECT_FALSE(PropertyListIndex().find("b"));
}

TEST(PropertyListIndex, keysMadeToCollideUnderOneSeedDoNotUnderTheProcesss) {
    constexpr PropertyListIndex::Seed known = {1, 2, 3, 4};
    constexpr int kKeys = 200;
    constexpr std::uint64_t mask = 511; // the slots of 200 keys
    QByteArray bytes = "{";
    int made = 0;
    for (int number = 0; made < kKeys; ++number) {
        const QByteArray key = QByteArray::number(number).rightJustified(24, '0');
        if ((propertylist::hashOfKey(key.toStdString(), known) & mask) == 0) {
            bytes += key + ";";
            ++made;
        }
    }
    PropertyListDocument document;
    ASSERT_TRUE(document.read(bytes + "}"));

    PropertyListIndex aimedAt(known);
    aimedAt.build(document.root());
    EXPECT_EQ(aimedAt.longestProbe(), 200U);
    PropertyListIndex index;
    index.build(document.root());
    EXPECT_LT(index.longestProbe(), 100U);
}

} // namespace
} // namespace navrel
