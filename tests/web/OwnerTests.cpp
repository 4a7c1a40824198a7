#include "companion/OwnerCommands.h"
#include "tests/web/ServedSite.h"

#include <gmock/gmock.h>

namespace navrel {
namespace {

/// The terminal's commands against a server, over its socket.
class OwnerTests : public ServedSite {
protected:
    OwnerTests() { start(); }

    /// What a command prints; its exit status must be `status`.
    std::string run(const std::vector<std::string>& arguments, int status = 0) const {
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(runOwnerCommand(arguments, OwnerLink(settings.socketPath)), status);
        std::fflush(stdout);
        return ::testing::internal::GetCapturedStdout();
    }
};

TEST_F(OwnerTests, aFileIsOpenedByItsPath) {
    EXPECT_EQ(run({"open", "TideView.swift:2"}), "Opened in Neovim.\n");
    EXPECT_THAT(host.asked(), ::testing::Contains("open " + path("TideView.swift") + ":2"));
    EXPECT_THAT(run({"open", "Notes.txt", "--json"}),
                ::testing::HasSubstr("\"outcome\":\"opened\""));
    host.outcome = OpenOutcome{false, "", "No editor answers."};
    EXPECT_EQ(run({"open", "Notes.txt"}, 1), "");
    EXPECT_EQ(run({"open", "Nothing.txt"}, 1), "");
}

TEST_F(OwnerTests, theProjectIsShown) {
    EXPECT_THAT(run({"state"}), ::testing::HasSubstr("Project: loaded App\n"));
    EXPECT_THAT(run({"search", "tide"}), ::testing::HasSubstr("TideView"));
    EXPECT_THAT(run({"outline", "TideView.swift"}), ::testing::HasSubstr("rise()"));
    EXPECT_EQ(valueAt(run({"outline", path("TideView.swift"), "--json"}), "name"),
              "TideView.swift");
}

TEST_F(OwnerTests, devicesArePairedListedAndForgotten) {
    EXPECT_EQ(run({"devices"}), "No device is paired.\n");
    const std::string url = valueAt(run({"pair", "--json"}), "url");
    EXPECT_EQ(post("/api/pair",
                   R"({"label":"iPad","ticket":")" + url.substr(url.find('=') + 1) + "\"}", "")
                  .status,
              204);
    EXPECT_THAT(run({"devices"}), ::testing::HasSubstr("iPad"));
    EXPECT_EQ(run({"forget", "1"}), "Forgotten.\n");
    run({"forget", "1"}, 1);
    EXPECT_THAT(run({"pair"}), ::testing::HasSubstr("The code to type: "));
}

} // namespace
} // namespace navrel
