#include "companion/OwnerCommands.h"
#include "companion/QRText.h"

#include <gtest/gtest.h>

#include <boost/json.hpp>

namespace navrel {
namespace {

const boost::json::object kTree = boost::json::parse(R"({"revision":1,"root":
    {"id":"0000000000000001","name":"App","kind":"project","children":[
        {"id":"0000000000000002","name":"View.m","kind":"file","path":"View.m"},
        {"id":"0000000000000003","name":"Lib","kind":"group","children":[
            {"id":"0000000000000004","name":"View.m","kind":"file","path":"Lib/View.m"},
            {"id":"0000000000000005","name":"Tide.h","kind":"file","path":"Lib/Tide.h"}]}]}})")
                                      .as_object();

std::string found(std::string_view name, std::string_view absolute) {
    return identifierOfFile(kTree, name, absolute).value_or("none").substr(12);
}

TEST(OwnerCommandsTests, filesAreFoundByPathOrByAnUnmistakableName) {
    EXPECT_EQ(found("View.m", "/home/App/Lib/View.m"), "0002"); // its path in the project
    EXPECT_EQ(found("Lib/View.m", "/elsewhere/Lib/View.m"), "0004");
    EXPECT_EQ(found("../App/Lib/View.m", "/home/App/Lib/View.m"), "0004");
    EXPECT_EQ(found("Tide.h", "/elsewhere/Tide.h"), "0005");
    EXPECT_FALSE(identifierOfFile(kTree, "Gone.m", "/home/App/Gone.m").has_value());
    EXPECT_FALSE(identifierOfFile(kTree, "App", "/home/App").has_value());
    EXPECT_FALSE(identifierOfFile({{"revision", 0}}, "View.m", "/View.m").has_value());
}

TEST(OwnerCommandsTests, linesStandBehindTheLastColon) {
    using Place = std::pair<std::string, std::uint32_t>;
    EXPECT_EQ(fileAndLine("View.m:12"), Place("View.m", 12));
    EXPECT_EQ(fileAndLine("View.m"), Place("View.m", 0));
    EXPECT_EQ(fileAndLine("a:b.m"), Place("a:b.m", 0));
    EXPECT_EQ(fileAndLine("a:b.m:3"), Place("a:b.m", 3));
    EXPECT_EQ(fileAndLine("View.m:-3"), Place("View.m:-3", 0));
}

TEST(OwnerCommandsTests, eventsAreReadInWhateverPieces) {
    std::string read;
    EventReader reader([&read](std::string_view name, std::string_view data) {
        read.append(name).append("=").append(data).append(";");
        return name != "opened";
    });
    EXPECT_TRUE(reader.receive("event: hel"));
    EXPECT_TRUE(reader.receive("lo\ndata: {}\n\n:\n\nevent: state\ndata: 1\n"));
    EXPECT_FALSE(reader.receive("\nevent: opened\ndata: 2\n\n"));
    EXPECT_EQ(read, "hello={};state=1;opened=2;");
}

TEST(OwnerCommandsTests, aCodeIsDrawnInHalfBlocks) {
    const QString text =
        qrText("http://localhost:2346/#p=AAAAAAAAAAAAAAAAAAAAAA", TerminalText::Style::plain);
    const QStringList lines = text.split(QLatin1Char('\n'));
    constexpr int kSide = 29 + 4; // squares of a code for such a text, and the margins
    EXPECT_EQ(lines.size(), (kSide + 1) / 2 + 1);
    EXPECT_EQ(lines.at(0), QString(kSide, QLatin1Char(' ')));
    EXPECT_EQ(lines.at(1).left(9), QStringLiteral("  █▀▀▀▀▀█")); // the mark in the corner
    const QString coloured = qrText("x", TerminalText::Style::coloured);
    EXPECT_TRUE(coloured.startsWith(QStringLiteral("\x1b[38;5;16;48;5;231m")));
}

TEST(OwnerCommandsTests, argumentsThatAreNotUnderstoodAreUsage) {
    const OwnerLink nowhere("/nonexistent/socket");
    EXPECT_EQ(runOwnerCommand({"forget"}, nowhere), 2);
    EXPECT_EQ(runOwnerCommand({"pair", "twice"}, nowhere), 2);
    EXPECT_EQ(runOwnerCommand({"dance"}, nowhere), 2);
    EXPECT_EQ(runOwnerCommand({"state", "--json"}, nowhere), 1); // no Navrel answers
    EXPECT_TRUE(isOwnerCommand("pair"));
    EXPECT_FALSE(isOwnerCommand("map"));
}

} // namespace
} // namespace navrel
