#include "companion/terminal/Names.h"
#include "companion/terminal/ViewAccess.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

const boost::json::object kTree = *objectIn(R"json({"revision":1,"root":
    {"id":"01","name":"App","kind":"project","children":[
        {"id":"02","name":"View.m","kind":"file","path":"View.m"},
        {"id":"03","name":"Lib","kind":"group","path":"Lib","children":[
            {"id":"04","name":"View.m","kind":"file","path":"Lib/View.m"},
            {"id":"05","name":"Tide.h","kind":"file","path":"Lib/Tide.h"},
            {"id":"06","name":"TideView.swift","kind":"file","path":"Lib/TideView.swift"}]}]}})json");

std::string found(std::string_view name, std::string_view absolute = "/elsewhere") {
    std::string ids;
    for (const NodeName& node : nodesNamed(nodesOf(kTree), name, absolute)) {
        ids += ids.empty() ? node.id : ' ' + node.id;
    }
    return ids;
}

TEST(Names, filesAreNamedByTheFirstReadingThatFits) {
    EXPECT_EQ(found("05"), "05");
    EXPECT_EQ(found("View.m", "/home/App/Lib/View.m"), "02"); // its path in the project
    EXPECT_EQ(found("Lib/View.m"), "04");
    EXPECT_EQ(found("../App/Lib/View.m", "/home/App/Lib/View.m"), "04");
    EXPECT_EQ(found("Tide.h"), "05");
    EXPECT_EQ(found("tide"), "05"); // without its extension
    EXPECT_EQ(found("TIDEVIEW"), "06");
    EXPECT_EQ(found("iew.s"), "06");
    EXPECT_EQ(found("view"), "02 04");
    EXPECT_EQ(found("ide"), "05 06");
    EXPECT_EQ(found("lib/tide"), "05 06");
    EXPECT_EQ(found("lib"), "03");
    EXPECT_EQ(found("gone"), "");
    EXPECT_EQ(found(""), "");
    EXPECT_EQ(found("Tide.h", ""), "05"); // not the project, which has no path either
    EXPECT_TRUE(nodesOf({{"revision", 0}}).empty());
}

TEST(Names, symbolsAreNamedWithOrWithoutParametersAndSigns) {
    const std::vector<SymbolName> symbols = symbolsOf(*objectIn(R"json({"items":[
        {"name":"Tide","kind":"class","line":1,"endLine":9,"children":[
            {"name":"rise(to:)","kind":"method","line":2,"endLine":3},
            {"name":"-fall:by:","kind":"method","line":4,"endLine":5},
            {"name":"","kind":"extension","line":6,"endLine":7},
            {"name":"riser","kind":"property","line":8,"endLine":8}]}]})json"));
    ASSERT_EQ(symbols.size(), 4U);
    const auto lines = [&symbols](std::string_view text) {
        std::string result;
        for (const SymbolName& symbol : symbolsNamed(symbols, text)) {
            result += std::to_string(symbol.line) + ' ';
        }
        return result;
    };
    EXPECT_EQ(lines("rise(to:)"), "2 ");
    EXPECT_EQ(lines("rise"), "2 ");
    EXPECT_EQ(lines("RISE"), "2 ");
    EXPECT_EQ(lines("fall"), "4 ");
    EXPECT_EQ(lines("ris"), "2 8 ");
    EXPECT_EQ(lines("ebb"), "");
    EXPECT_EQ(lines(""), "");
}

TEST(Names, placesAreReadInEveryWayThatColonsAllow) {
    using Places = std::vector<PlaceText>;
    EXPECT_EQ(placesIn("View.m"), (Places{{"View.m", "", 0}}));
    EXPECT_EQ(placesIn("View.m:12"),
              (Places{{"View.m", "", 12}, {"View.m:12", "", 0}, {"View.m", "12", 0}}));
    EXPECT_EQ(placesIn("View.m:12:5").front(), (PlaceText{"View.m", "", 12, 5}));
    EXPECT_EQ(placesIn("View.m:12:x").front(), (PlaceText{"View.m:12:x", "", 0}));
    EXPECT_EQ(placesIn("12:5"), (Places{{"12", "", 5}, {"12:5", "", 0}, {"12", "5", 0}}));
    EXPECT_EQ(placesIn("View.m:-fall:by:"), (Places{{"View.m:-fall:by:", "", 0},
                                                    {"View.m", "-fall:by:", 0},
                                                    {"View.m:-fall", "by:", 0},
                                                    {"View.m:-fall:by", "", 0}}));
    EXPECT_EQ(placesIn("a:b.m"), (Places{{"a:b.m", "", 0}, {"a", "b.m", 0}}));
    EXPECT_EQ(placesIn(":3"), (Places{{":3", "", 0}}));
    EXPECT_EQ(placesIn("View.m:0").front(), (PlaceText{"View.m:0", "", 0}));
    EXPECT_EQ(placesIn("View.m:"), (Places{{"View.m:", "", 0}, {"View.m", "", 0}}));
    EXPECT_EQ(placesIn("My View.m 12"), (Places{{"My View.m 12", "", 0}, {"My View.m", "", 12}}));
}

} // namespace
} // namespace navrel
