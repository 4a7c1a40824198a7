#include "app/ProgramVersion.h"
#include "desktop/CommandLine.h"

#include <gmock/gmock.h>

#include <array>

namespace navrel {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::optional<CommandLineAnswer> answerTo(const char* argument) {
    return answerCommandLine(std::array{argument});
}

TEST(CommandLine, withoutArgumentsTheProgramStarts) {
    EXPECT_FALSE(answerCommandLine({}));
}

TEST(CommandLine, helpSaysHowToUseTheProgram) {
    for (const char* option : {"--help", "-h"}) {
        const auto answer = answerTo(option);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->exitStatus, 0);
        EXPECT_THAT(answer->text, StartsWith("Usage: navrel\n"));
        EXPECT_THAT(answer->text, HasSubstr("--version"));
    }
}

TEST(CommandLine, versionIsTheProgramsNameAndVersion) {
    for (const char* option : {"--version", "-v"}) {
        const auto answer = answerTo(option);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->exitStatus, 0);
        EXPECT_EQ(answer->text, "navrel " + programVersion().toStdString() + "\n");
    }
}

TEST(CommandLine, anUnknownArgumentIsNamed) {
    const auto answer = answerTo("Tide.xcodeproj");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->exitStatus, 2);
    EXPECT_EQ(answer->text, "navrel: unknown argument: Tide.xcodeproj\nTry \"navrel --help\".\n");
}

} // namespace
} // namespace navrel
