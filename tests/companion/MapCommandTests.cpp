#include "companion/MapCommand.h"
#include "tests/codemap/ScratchProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

namespace navrel {
namespace {

using testing::HasSubstr;

class MapCommandTests : public testing::Test {
protected:
    MapCommandTests() {
        scratch_.write("Tide.swift", "struct Tide: Codable {\n"
                                     "    // MARK: - Moon\n"
                                     "    func rise() {} // TODO: fall\n"
                                     "}\n");
        bundle_ = scratch_.writeProject("App.xcodeproj",
                                        group("MAIN", "T") + fileReference("T", "Tide.swift"));
    }

    /// Runs the command; what it printed is in `output`.
    int run(std::vector<std::string> arguments) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = runMapCommand(arguments);
        std::fflush(stdout);
        output_ = testing::internal::GetCapturedStdout();
        errors_ = testing::internal::GetCapturedStderr();
        return status;
    }
    boost::json::value json() const { return boost::json::parse(output_); }

    ScratchProject scratch_;
    std::string bundle_;
    std::string output_;
    std::string errors_;
};

TEST_F(MapCommandTests, printsTheTree) {
    EXPECT_EQ(run({bundle_}), 0);
    EXPECT_EQ(output_, "App (project)\n└── Tide.swift  2  (not in a target)\n");
    EXPECT_EQ(run({bundle_, "--json"}), 0);
    EXPECT_EQ(json().at("root").at("name").as_string(), "App");
}

TEST_F(MapCommandTests, printsAnOutline) {
    for (const std::string& file : {std::string("Tide.swift"), scratch_.path("Tide.swift")}) {
        EXPECT_EQ(run({bundle_, "--outline", file}), 0);
        EXPECT_EQ(output_, "     1  struct Tide: Codable\n"
                           "     2  ── Moon\n"
                           "     3    method rise()\n"
                           "     3  todo: fall\n");
    }
    EXPECT_EQ(run({"--json", "--outline", "Tide.swift", bundle_}), 0);
    EXPECT_EQ(json().at("lines").to_number<int>(), 4);
}

TEST_F(MapCommandTests, printsSearchTypesNotesAndChanges) {
    EXPECT_EQ(run({bundle_, "--search", "rise"}), 0);
    EXPECT_EQ(output_, "method rise() in Tide  Tide.swift:3\n");
    EXPECT_EQ(run({bundle_, "--types"}), 0);
    EXPECT_EQ(output_, "Codable (not in this project)\nstruct Tide: Codable  Tide.swift:1\n");
    EXPECT_EQ(run({bundle_, "--notes"}), 0);
    EXPECT_EQ(output_, "Tide.swift:3  todo fall\n");
    EXPECT_EQ(run({bundle_, "--changes"}), 0);
    EXPECT_EQ(output_, "The project is in no Git repository.\n");
}

TEST_F(MapCommandTests, whatIsNotFoundOrUnreadableIsOne) {
    EXPECT_EQ(run({bundle_, "--outline", "None.swift"}), 1);
    EXPECT_EQ(run({scratch_.path("None.xcodeproj")}), 1);
    scratch_.write("App.xcodeproj/project.pbxproj", "{ objects =\n= }");
    EXPECT_EQ(run({bundle_, "--json"}), 1);
    EXPECT_THAT(errors_, HasSubstr("line 2"));
    EXPECT_THAT(std::string(json().at("error").as_string()), HasSubstr("line 2"));
}

TEST_F(MapCommandTests, whatIsNotUnderstoodIsTwo) {
    EXPECT_EQ(run({}), 2);
    EXPECT_EQ(run({"--json"}), 2);
    EXPECT_EQ(run({bundle_, "--outline"}), 2);
    EXPECT_EQ(run({bundle_, "--types", "--notes"}), 2);
    EXPECT_EQ(run({bundle_, bundle_}), 2);
    EXPECT_EQ(run({bundle_, "--unknown"}), 2);
    EXPECT_THAT(errors_, HasSubstr("usage"));
}

TEST_F(MapCommandTests, controlCharactersDoNotReachTheTerminal) {
    scratch_.writeProject("App.xcodeproj",
                          group("MAIN", "T") + fileReference("T", "\x1B[31mred.m"));
    EXPECT_EQ(run({bundle_}), 0);
    EXPECT_THAT(output_, testing::Not(HasSubstr("\x1B")));
}

} // namespace
} // namespace navrel
