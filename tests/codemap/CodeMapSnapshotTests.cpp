#include "tests/codemap/SnapshotBuilder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(NodeIDTests, areSixteenLowerCaseDigits) {
    EXPECT_EQ(textOfNodeID(0x1A), "000000000000001a");
    EXPECT_EQ(nodeIDFromText("fedcba9876543210"), 0xFEDCBA9876543210U);
    EXPECT_EQ(nodeIDFromText("1a"), std::nullopt);
    EXPECT_EQ(nodeIDFromText("000000000000001A"), std::nullopt);
    EXPECT_EQ(nodeIDFromText("-00000000000001a"), std::nullopt);
}

TEST(CodeMapSnapshotTests, anEmptyOneHasNothing) {
    const CodeMapSnapshot snapshot;
    EXPECT_EQ(snapshot.state(), MapState::none);
    EXPECT_EQ(snapshot.revision(), 0U);
    EXPECT_EQ(snapshot.root(), nullptr);
    EXPECT_EQ(snapshot.node(1), nullptr);
    EXPECT_EQ(snapshot.fileAtPath("/home/App/a.m"), nullptr);
    EXPECT_THAT(snapshot.counterparts(1), IsEmpty());
}

TEST(CodeMapSnapshotTests, findsNodesByIdentifierAndFilesByPath) {
    SnapshotBuilder builder;
    const NodeID file = builder.addFile("Views/Tide.m", [](OutlineBuilder& outline) {
        outline.add(declaration(SymbolKind::function, 3, "draw"), 4);
    });
    builder.node(builder.addFile("Gone.m")).missing = true;
    const CodeMapSnapshot snapshot = builder.build();
    EXPECT_EQ(snapshot.node(file)->name, "Tide.m");
    EXPECT_EQ(snapshot.fileAtPath("/home/App/Views/Tide.m")->id, file);
    EXPECT_EQ(snapshot.fileAtPath("/home/App/Views"), nullptr);
    EXPECT_EQ(snapshot.fileCount(), 1U);
    EXPECT_EQ(snapshot.symbolCount(), 1U);
}

TEST(CounterpartsTests, theNearestOfTheSameNameComeFirst) {
    SnapshotBuilder builder;
    const NodeID far = builder.addFile("Old/Deep/Tide.h");
    const NodeID category = builder.addFile("Model/Tide+Moon.m");
    const NodeID near = builder.addFile("Model/Tide.h");
    const NodeID side = builder.addFile("Public/Tide.h");
    builder.addFile("Model/TideView.m");
    builder.addFile("Model/Tide.strings");
    const NodeID file = builder.addFile("Model/Tide.m");
    const CodeMapSnapshot snapshot = builder.build();
    EXPECT_THAT(snapshot.counterparts(file), ElementsAre(near, side, far, category));
    EXPECT_THAT(snapshot.counterparts(category), ElementsAre(near, file, side, far));
}

TEST(CounterpartsTests, areFewInHowManyFilesEver) {
    SnapshotBuilder builder;
    for (int folder = 0; folder < 100; ++folder) {
        builder.addFile(std::to_string(folder) + "/Tide.h");
    }
    const NodeID file = builder.addFile("Tide.m");
    EXPECT_EQ(builder.build().counterparts(file).size(), 32U);
}

} // namespace
} // namespace navrel
