#include "companion/terminal/Arguments.h"
#include "companion/terminal/Completion.h"
#include "tests/companion/ShortText.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace navrel {
namespace {

CompletionWords words() {
    CompletionWords words;
    words.files = [] {
        return QStringList{text("Tide.swift"), text("TideView.swift"), text("b.m")};
    };
    words.groups = [] { return QStringList{text("Views"), text("Lib")}; };
    words.types = [] { return QStringList{text("UIView"), text("UIViewController")}; };
    words.extensions = [] { return QStringList{text("plist"), text("m")}; };
    words.symbols = [](const QString& file) {
        return file == text("b.m") ? QStringList{text("-rise"), text("-fall:")} : QStringList();
    };
    return words;
}

QStringList candidates(const char* line) {
    return completionOf(text(line), words()).candidates;
}

TEST(Completion, commandsComeFirst) {
    EXPECT_EQ(candidates("ov"), QStringList{text("overview")});
    EXPECT_EQ(candidates("  sh"), (QStringList{text("shortcuts"), text("show")}));
    EXPECT_TRUE(candidates("").contains(text("tree")));
    EXPECT_TRUE(candidates("dance x").isEmpty());
}

TEST(Completion, argumentsAreWhatTheCommandTakes) {
    EXPECT_EQ(candidates("outline ti"), (QStringList{text("Tide.swift"), text("TideView.swift")}));
    EXPECT_EQ(candidates("ls v"), QStringList{text("Views")});
    EXPECT_EQ(candidates("hide p"), QStringList{text("plist")});
    EXPECT_EQ(candidates("classes UI").size(), 2);
    EXPECT_EQ(candidates("help ov"), QStringList{text("overview")});
    EXPECT_TRUE(candidates("find ti").isEmpty());
}

TEST(Completion, symbolsFollowTheFile) {
    EXPECT_EQ(candidates("open b."), QStringList{text("b.m")});
    EXPECT_EQ(candidates("open b.m:"), (QStringList{text("-fall:"), text("-rise")}));
    const Completion completion = completionOf(text("open b.m:-r"), words());
    EXPECT_EQ(completion.begin, 9);
    EXPECT_EQ(completion.candidates, QStringList{text("-rise")});
    EXPECT_EQ(candidates("open b.m:r"), QStringList{text("rise")});
    EXPECT_EQ(candidates("open b.m:+"), QStringList());
}

TEST(Completion, whatAllCandidatesShareIsTyped) {
    EXPECT_EQ(completionOf(text("outline ti"), words()).common(), text("Tide"));
    EXPECT_EQ(completionOf(text("outline TideV"), words()).common(), text("TideView.swift"));
    EXPECT_EQ(Completion().common(), QString());
}

Arguments parsed(const std::vector<std::string>& words) {
    const auto result = argumentsIn(words);
    EXPECT_TRUE(std::holds_alternative<Arguments>(result));
    return std::get<Arguments>(result);
}

TEST(Arguments, optionsMayBeAnywhereAndTheRestIsTheCommand) {
    EXPECT_EQ(parsed({}), Arguments());
    const Arguments arguments = parsed({"outline", "--json", "My", "File.m", "--wait", "3"});
    EXPECT_EQ(arguments.command, text("outline My File.m"));
    EXPECT_TRUE(arguments.isJSON);
    EXPECT_EQ(arguments.wait, std::chrono::seconds(3));
    EXPECT_TRUE(parsed({"--device", "--wait=0"}).isDevice);
    EXPECT_TRUE(parsed({"--plain"}).isPlain);
    EXPECT_EQ(parsed({"--color=never"}).colour, Arguments::Colour::never);
    EXPECT_EQ(parsed({"find", "--", "--json"}).command, text("find --json"));
    EXPECT_EQ(parsed({"--complete", "open --x"}).command, text("open --x"));
    EXPECT_TRUE(parsed({"-h"}).wantsHelp);
    EXPECT_TRUE(parsed({"--version"}).wantsVersion);
}

TEST(Arguments, whatIsNotUnderstoodIsSaid) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--wait"}, {"--wait", "x"}, {"--wait=-1"}, {"--dance"}}) {
        const auto result = argumentsIn(words);
        ASSERT_TRUE(std::holds_alternative<QString>(result)) << words.front();
        EXPECT_TRUE(std::get<QString>(result).contains(text("--")));
    }
}

} // namespace
} // namespace navrel
