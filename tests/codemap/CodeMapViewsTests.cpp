#include "codemap/CodeMapViews.h"
#include "codemap/FuzzyMatch.h"
#include "tests/codemap/SnapshotBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <map>
#include <random>
#include <string>
#include <utility>

namespace navrel {
namespace {

namespace json = boost::json;

json::value parsed(std::string_view text) {
    return json::parse(json::string_view(text.data(), text.size()));
}

/// A project of one header and one source.
class CodeMapViewsTests : public testing::Test {
protected:
    CodeMapViewsTests() {
        header_ = builder_.addFile("Model/Tide.h");
        source_ = builder_.addFile("Model/Tide.m", [](OutlineBuilder& outline) {
            outline.addHeading(2, "Model", true);
            OutlineBuilder::Declaration type =
                declaration(SymbolKind::classType, 3, "Tide", "NSObject\nNSCopying");
            type.signature = "@interface Tide : NSObject <NSCopying>";
            type.access = Access::publicAccess;
            outline.open(type);
            outline.add(declaration(SymbolKind::method, 4, "-height"), 6);
            outline.close(8);
            outline.addNote(NoteKind::todo, 9, "Moon phases");
        });
    }

    SnapshotBuilder builder_;
    NodeID header_ = 0;
    NodeID source_ = 0;
};

TEST_F(CodeMapViewsTests, theTreeNestsItsNodes) {
    builder_.node(header_).missing = true;
    builder_.node(source_).targets = {"App", "Tests"};
    EXPECT_EQ(json::value(treeView(builder_.build(7))), parsed(R"({"revision": 7, "root": {
        "id": "0000000000000001", "name": "App", "kind": "project", "children": [
            {"id": "0000000000000002", "name": "Tide.h", "kind": "file", "path": "Model/Tide.h",
             "language": "header", "extension": "h", "missing": true},
            {"id": "0000000000000003", "name": "Tide.m", "kind": "file", "path": "Model/Tide.m",
             "language": "objc", "extension": "m", "symbols": 2, "targets": ["App", "Tests"]}]}})"));
}

TEST_F(CodeMapViewsTests, withoutAProjectThereIsNoRoot) {
    EXPECT_EQ(json::value(treeView(CodeMapSnapshot())), parsed(R"({"revision": 0})"));
}

TEST_F(CodeMapViewsTests, theOutlineNestsItsSymbols) {
    EXPECT_EQ(json::value(*outlineView(builder_.build(), source_)), parsed(R"({
        "id": "0000000000000003", "name": "Tide.m", "path": "Model/Tide.m", "language": "objc",
        "revision": 1,
        "counterparts": [{"id": "0000000000000002", "name": "Tide.h", "path": "Model/Tide.h"}],
        "items": [{"kind": "class", "name": "Tide", "line": 3, "endLine": 8, "access": "public",
            "signature": "@interface Tide : NSObject <NSCopying>",
            "inherits": ["NSObject", "NSCopying"],
            "children": [{"kind": "method", "name": "-height", "line": 4, "endLine": 6}]}],
        "headings": [{"line": 2, "text": "Model", "separator": true}],
        "notes": [{"kind": "todo", "text": "Moon phases", "line": 9, "file":
            {"id": "0000000000000003", "name": "Tide.m", "path": "Model/Tide.m"}}],
        "lines": 100})"));
}

TEST_F(CodeMapViewsTests, onlyFilesHaveOutlines) {
    EXPECT_EQ(outlineView(builder_.build(), 1), std::nullopt);
    EXPECT_EQ(outlineView(builder_.build(), 99), std::nullopt);
    EXPECT_EQ((*outlineView(builder_.build(), header_))["items"], json::array());
}

TEST_F(CodeMapViewsTests, aSearchResultHasKindPlaceAndPositions) {
    const CodeMapSnapshot snapshot = builder_.build();
    EXPECT_EQ(json::value(searchView(snapshot, {"hei", {}, 50})), parsed(R"({
        "query": "hei", "revision": 1, "truncated": false, "items": [
            {"kind": "method", "name": "-height", "container": "Tide", "line": 4,
             "file": {"id": "0000000000000003", "name": "Tide.m", "path": "Model/Tide.m"},
             "positions": [1, 2, 3]}]})"));
    const json::object tides = searchView(snapshot, {"tide", {}, 2});
    EXPECT_EQ(tides.at("truncated"), true);
    EXPECT_EQ(tides.at("items").as_array().size(), 2U);
}

TEST_F(CodeMapViewsTests, aCommentIsFoundWithTheDeclarationAroundIt) {
    builder_.addFile("Reef.m", [](OutlineBuilder& outline) {
        outline.addNote(NoteKind::todo, 1, "coral one");
        outline.open(declaration(SymbolKind::classType, 2, "Reef"));
        outline.addHeading(3, "coral two", false);
        outline.add(declaration(SymbolKind::method, 4, "-grow"), 6);
        outline.addNote(NoteKind::todo, 5, "coral in it");
        outline.addNote(NoteKind::todo, 7, "coral behind");
        outline.close(8);
    });
    std::map<std::string, std::string> containers;
    const CodeMapSnapshot snapshot = builder_.build();
    for (const SearchResult& result : searchIn(snapshot, {"coral", {}, 50}).items) {
        containers.emplace(result.name, result.container);
    }
    EXPECT_THAT(containers, testing::ElementsAre(testing::Pair("coral behind", "Reef"),
                                                 testing::Pair("coral in it", "-grow"),
                                                 testing::Pair("coral one", ""),
                                                 testing::Pair("coral two", "Reef")));
}

TEST_F(CodeMapViewsTests, aSearchIsLimitedToKinds) {
    const CodeMapSnapshot snapshot = builder_.build();
    const auto kindsOf = [&snapshot](std::string_view query, std::vector<std::string_view> kinds) {
        std::vector<std::string> found;
        const json::object view = searchView(snapshot, {query, kinds, 50});
        for (const json::value& item : view.at("items").as_array()) {
            found.emplace_back(item.at("kind").as_string());
        }
        return found;
    };
    EXPECT_THAT(kindsOf("tide", {"file"}), testing::ElementsAre("file", "file"));
    EXPECT_THAT(kindsOf("tide", {"class"}), testing::ElementsAre("class"));
    EXPECT_THAT(kindsOf("mo", {"mark", "note"}), testing::UnorderedElementsAre("mark", "note"));
    EXPECT_THAT(kindsOf("", {}), testing::IsEmpty());
}

TEST_F(CodeMapViewsTests, equalMatchesAreOrderedByLengthThenByDate) {
    const NodeID old = builder_.addFile("Old/Reef.m");
    const NodeID recent = builder_.addFile("New/Reef.m");
    const NodeID longer = builder_.addFile("Reef.swift");
    builder_.node(recent).modified = 5;
    std::vector<NodeID> found;
    const CodeMapSnapshot snapshot = builder_.build();
    for (const SearchResult& result : searchIn(snapshot, {"reef", {}, 50}).items) {
        found.push_back(result.file->id);
    }
    EXPECT_THAT(found, testing::ElementsAre(recent, old, longer));
}

TEST_F(CodeMapViewsTests, equalMatchesOfOneFileAreOrderedByTheirKind) {
    builder_.addFile("reef", [](OutlineBuilder& outline) {
        outline.addNote(NoteKind::todo, 1, "reef");
        outline.addHeading(2, "reef", false);
        outline.add(declaration(SymbolKind::property, 3, "reef"), 3);
        outline.add(declaration(SymbolKind::enumCase, 4, "reef"), 4);
        outline.add(declaration(SymbolKind::method, 5, "reef"), 5);
        outline.add(declaration(SymbolKind::function, 6, "reef"), 6);
        outline.add(declaration(SymbolKind::extension, 7, "Reef"), 7);
        outline.add(declaration(SymbolKind::protocol, 8, "Reef"), 8);
        outline.add(declaration(SymbolKind::classType, 9, "Reef"), 9);
    });
    std::vector<std::string> found;
    const CodeMapSnapshot snapshot = builder_.build();
    for (const SearchResult& result : searchIn(snapshot, {"reef", {}, 50}).items) {
        found.emplace_back(result.kind);
    }
    EXPECT_THAT(found, testing::ElementsAre("protocol", "class", "extension", "method", "function",
                                            "property", "case", "file", "mark", "note"));
    ASSERT_EQ(searchIn(snapshot, {"reef", {}, 1}).items.size(), 1U);
    EXPECT_EQ(searchIn(snapshot, {"reef", {}, 1}).items.front().kind, "protocol");
}

TEST_F(CodeMapViewsTests, theResultsAreTheBestOfAllMatches) {
    std::mt19937 random(5);
    std::vector<std::string> names;
    for (int name = 0; name < 2000; ++name) {
        std::string& text = names.emplace_back();
        for (unsigned length = 1 + random() % 14; length > 0; --length) {
            text += "abABc_:( "[random() % 9];
        }
    }
    builder_.addFile("x.c", [&names](OutlineBuilder& outline) {
        for (const std::string& name : names) {
            outline.add(declaration(SymbolKind::function, 1, name), 1);
        }
    });
    const CodeMapSnapshot snapshot = builder_.build();
    for (const std::string_view query : {"a", "ab", "ba", "abc", "c_", "a b", "aabb", "b:"}) {
        FuzzyMatch match(query);
        std::vector<std::pair<int, std::size_t>> all; // negated score, length: best first
        for (const std::string& name : names) {
            if (const auto score = match.score(name)) {
                all.emplace_back(-*score, name.size());
            }
        }
        std::sort(all.begin(), all.end());
        const SearchResults results = searchIn(snapshot, {query, {"function"}, 20});
        ASSERT_EQ(results.items.size(), 20U);
        EXPECT_TRUE(results.truncated);
        for (std::size_t place = 0; place < results.items.size(); ++place) {
            const std::string_view name = results.items[place].name;
            EXPECT_EQ(all[place], std::pair(-*match.score(name), name.size())) << query << name;
        }
    }
}

TEST_F(CodeMapViewsTests, typesSayWhetherTheProjectDeclaresThem) {
    EXPECT_EQ(json::value(typesView(builder_.build())), parsed(R"({"revision": 1, "items": [
        {"name": "NSCopying", "known": false}, {"name": "NSObject", "known": false},
        {"name": "Tide", "kind": "class", "inherits": ["NSObject", "NSCopying"], "line": 3,
         "file": {"id": "0000000000000003", "name": "Tide.m", "path": "Model/Tide.m"},
         "known": true}]})"));
}

TEST_F(CodeMapViewsTests, anImplementationCountsWhereNothingElseDeclaresTheClass) {
    builder_.addFile("Other.m", [](OutlineBuilder& outline) {
        outline.add(declaration(SymbolKind::implementation, 1, "Tide"), 2);
        outline.add(declaration(SymbolKind::implementation, 3, "Ebb"), 4);
        outline.add(declaration(SymbolKind::category, 5, "NSString (Trim)"), 6);
    });
    std::vector<std::string> names;
    const json::object view = typesView(builder_.build());
    for (const json::value& item : view.at("items").as_array()) {
        names.emplace_back(item.at("name").as_string());
    }
    EXPECT_THAT(names, testing::ElementsAre("Ebb", "NSCopying", "NSObject", "NSString",
                                            "NSString (Trim)", "Tide"));
}

TEST_F(CodeMapViewsTests, notesNameTheirFile) {
    EXPECT_EQ(json::value(notesView(builder_.build())), parsed(R"({"revision": 1, "items": [
        {"kind": "todo", "text": "Moon phases", "line": 9, "file":
            {"id": "0000000000000003", "name": "Tide.m", "path": "Model/Tide.m"}}]})"));
}

TEST_F(CodeMapViewsTests, changesOfTheTreeNameWhatIsNewAndWhatIsGone) {
    for (const char* name : {"a.c", "b.c", "c.c", "d.c"}) {
        builder_.addFile(name);
    }
    const CodeMapSnapshot before = builder_.build(1);
    builder_.addFile("e.c");
    builder_.node(header_).missing = true;
    const CodeMapSnapshot after = builder_.build(2);
    EXPECT_EQ(json::value(treeChangesView(before, after)), parsed(R"({"revision": 2, "since": 1,
        "changed": [
            {"id": "0000000000000002", "name": "Tide.h", "kind": "file", "path": "Model/Tide.h",
             "language": "header", "extension": "h", "missing": true,
             "parent": "0000000000000001", "index": 0},
            {"id": "0000000000000008", "name": "e.c", "kind": "file", "path": "e.c",
             "language": "c", "extension": "c", "parent": "0000000000000001", "index": 6}],
        "removed": []})"));
    const json::object back = treeChangesView(after, before);
    EXPECT_EQ(back.at("removed"), parsed(R"(["0000000000000008"])"));
}

TEST_F(CodeMapViewsTests, theWholeTreeIsSentWhenItIsShorter) {
    const CodeMapSnapshot nothing;
    EXPECT_TRUE(treeChangesView(nothing, builder_.build()).contains("root"));
}

} // namespace
} // namespace navrel
