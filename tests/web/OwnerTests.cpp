#include "companion/link/OwnerLink.h"
#include "companion/terminal/Commands.h"
#include "companion/terminal/OwnerSource.h"
#include "tests/web/ServedSite.h"

#include <gmock/gmock.h>

namespace navrel {
namespace {

/// The terminal's commands against a server, over its socket.
class OwnerTests : public ServedSite {
protected:
    OwnerTests() { start(); }

    /// What a command prints; it must end with `result`.
    std::string run(const std::string& line, CommandResult result = CommandResult::done) const {
        const OwnerLink link(settings.socketPath);
        OwnerSource source(link);
        const bool isJSON = line.ends_with(" --json");
        QString printed;
        Commands commands({source, [&](const QString& text) { printed += text; },
                           [&](const QString& text) { printed += text + u'\n'; },
                           TerminalText(TerminalText::Style::plain), isJSON});
        const std::string typed = isJSON ? line.substr(0, line.rfind(' ')) : line;
        EXPECT_EQ(commands.run(QString::fromStdString(typed)), result);
        return printed.toStdString();
    }
};

TEST_F(OwnerTests, aFileIsOpenedByItsPath) {
    EXPECT_EQ(run("open TideView.swift:2"), "Opened TideView.swift:2 in Neovim.\n");
    EXPECT_THAT(host.asked(), ::testing::Contains("open " + path("TideView.swift") + ":2"));
    EXPECT_EQ(run("open TideView.swift:2:5"), "Opened TideView.swift:2:5 in Neovim.\n");
    EXPECT_EQ(host.asked().back(), "open " + path("TideView.swift") + ":2:5");
    EXPECT_THAT(run("open Notes.txt --json"), ::testing::HasSubstr("\"outcome\":\"opened\""));
    host.outcome = OpenOutcome{false, "", "No editor answers.", "Start one."};
    EXPECT_EQ(run("open Notes.txt", CommandResult::notFound), "No editor answers.\nStart one.\n");
    EXPECT_THAT(run("back --json", CommandResult::notFound),
                ::testing::HasSubstr("\"hint\":\"Start one.\""));
    EXPECT_EQ(run("open Nothing.txt", CommandResult::notFound),
              "The project has no file \"Nothing.txt\".\n\"find Nothing.txt\" searches symbols, "
              "too, and shows places that open takes; \"tree\" shows all files.\n");
}

TEST_F(OwnerTests, theProjectIsShown) {
    EXPECT_THAT(run("project"), ::testing::HasSubstr("App\n"));
    EXPECT_THAT(run("search tide"), ::testing::HasSubstr("TideView"));
    EXPECT_THAT(run("outline TideView.swift"), ::testing::HasSubstr("rise()"));
    EXPECT_EQ(valueAt(run("outline " + path("TideView.swift") + " --json"), "name"),
              "TideView.swift");
}

TEST_F(OwnerTests, aSymbolIsOpenedByItsName) {
    EXPECT_EQ(run("open tideview:rise"), "Opened TideView.swift:2 in Neovim.\n");
    EXPECT_EQ(host.asked(), std::vector{"open " + path("TideView.swift") + ":2"});
    EXPECT_EQ(run("open TideView.swift:fall", CommandResult::notFound),
              "TideView.swift declares no \"fall\".\n\"outline TideView.swift\" shows what it "
              "declares.\n");
    EXPECT_EQ(run("back"), "Opened in Neovim.\n");
}

TEST_F(OwnerTests, whatDerivesFromAClassIsListed) {
    EXPECT_EQ(run("classes uiview"), "TideView  TideView.swift:1\n");
    EXPECT_EQ(run("classes"), "UIView\n  TideView  TideView.swift:1\n");
    EXPECT_EQ(run("class TideView", CommandResult::notFound),
              "Nothing in the project derives from TideView.\n"
              "\"classes\" lists all that others derive from.\n");
    EXPECT_EQ(run("class Foo", CommandResult::notFound),
              "No type is called \"Foo\".\n\"classes\" lists all that others derive from.\n");
}

TEST_F(OwnerTests, theSentencesOfTheStateAreShown) {
    ProgramState state;
    state.sentences = {{"Project", "good", "App is loaded: 3 files.", ""},
                       {"Device", "idle", "No device is attached.", "Plug one in."}};
    service_->publishState(state);
    ASSERT_TRUE(waitUntil([this] { return run("state").find("Device") != std::string::npos; }));
    EXPECT_EQ(run("state"), "Project   App is loaded: 3 files.\n"
                            "Device    No device is attached.\n"
                            "          Plug one in.\n");
}

TEST_F(OwnerTests, devicesArePairedListedAndForgotten) {
    EXPECT_THAT(run("devices"), ::testing::HasSubstr("No browser is paired."));
    const std::string url = valueAt(run("pair --json"), "url");
    EXPECT_EQ(post("/api/pair",
                   R"({"label":"iPad","ticket":")" + url.substr(url.find('=') + 1) + "\"}", "")
                  .status,
              204);
    EXPECT_THAT(run("devices"), ::testing::HasSubstr("iPad"));
    EXPECT_EQ(run("forget 1"), "Forgotten.\n");
    run("forget 1", CommandResult::notFound);
    EXPECT_THAT(run("pair"), ::testing::HasSubstr("The code to type: "));
}

} // namespace
} // namespace navrel
