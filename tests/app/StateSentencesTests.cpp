#include "app/StateSentences.h"

#include <gtest/gtest.h>

#include <set>

namespace navrel {
namespace {

using Level = StateSentence::Level;
using Part = StateSentence::Part;

StateSentence sentence(Part part, Level level, const char* text, const char* hint = "") {
    return {part, level, QString::fromUtf8(text), QString::fromUtf8(hint)};
}

TEST(StateSentences, aProjectThatIsMissing) {
    ProgramFacts::Project project;
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::warning, "The editor shows no project.",
                       "Open a file of an Xcode project in your editor, or choose a project in "
                       "Navrel's menu."));
    project.isChosenByEditor = false;
    EXPECT_EQ(sentenceOf(project), sentence(Part::project, Level::warning, "No project is chosen.",
                                            "Choose one in Navrel's menu."));
}

TEST(StateSentences, aProjectThatCannotBeRead) {
    const char* const hint = "Look for a merge conflict or a damaged line in its project.pbxproj; "
                             "Navrel reads it again as soon as it changes.";
    ProgramFacts::Project project;
    project.state = ProgramFacts::Project::State::unreadable;
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::error, "The project cannot be read.", hint));
    project.name = QStringLiteral("Tides");
    project.line = 12;
    project.reason = QStringLiteral("Expected a semicolon.");
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::error,
                       "Tides cannot be read at line 12: Expected a semicolon.", hint));
}

TEST(StateSentences, aProjectThatIsReadOrLoaded) {
    ProgramFacts::Project project;
    project.state = ProgramFacts::Project::State::loading;
    EXPECT_EQ(sentenceOf(project), sentence(Part::project, Level::good,
                                            "Navrel is reading the project: 0 files so far."));
    project.name = QStringLiteral("Tides");
    project.files = 1;
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::good, "Navrel is reading Tides: 1 file so far."));
    project.state = ProgramFacts::Project::State::loaded;
    project.files = 42;
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::good, "Tides is loaded: 42 files."));
    project.name.clear();
    EXPECT_EQ(sentenceOf(project),
              sentence(Part::project, Level::good, "A project is loaded: 42 files."));
}

TEST(StateSentences, aDeviceThatIsNotConnected) {
    ProgramFacts::Device device;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::idle, "No device is attached.",
                       "Plug one in, unlock it, and tap \"Trust\" if it asks."));
    device.state = ProgramFacts::Device::State::noDaemon;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::idle,
                       "No device is found: the USB daemon, usbmuxd, is not running.",
                       "Plug the device in, which starts the daemon; if this sentence stays, "
                       "install the package usbmuxd."));
    device.state = ProgramFacts::Device::State::silent;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::warning,
                       "A device is attached, but no app listens on its port 2345.",
                       "Open the companion app on the device and keep it in front."));
}

TEST(StateSentences, aDeviceThatIsConnected) {
    ProgramFacts::Device device;
    device.state = ProgramFacts::Device::State::connected;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::good, "A device is connected over USB."));
    device.since = QStringLiteral("14:02");
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::good, "A device is connected over USB since 14:02."));
    device.isSimulator = true;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::good,
                       "A companion app on this machine is connected since 14:02."));
}

TEST(StateSentences, aPortThatBelongsToAnotherUser) {
    const char* const hint = "Ask that user to end the program that listens there.";
    ProgramFacts::Device device;
    device.state = ProgramFacts::Device::State::refused;
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::warning,
                       "Port 2345 of this machine belongs to another user (unknown), who is not "
                       "shown your project.",
                       hint));
    device.user = QStringLiteral("1001");
    EXPECT_EQ(sentenceOf(device),
              sentence(Part::device, Level::warning,
                       "Port 2345 of this machine belongs to another user (1001), who is not shown "
                       "your project.",
                       hint));
}

TEST(StateSentences, editors) {
    ProgramFacts::Editor editor;
    EXPECT_EQ(sentenceOf(editor),
              sentence(Part::editor, Level::idle,
                       "No editor is asked while no browser or terminal follows it.",
                       "Files are opened in your editor all the same."));
    editor.state = ProgramFacts::Editor::State::none;
    EXPECT_EQ(sentenceOf(editor),
              sentence(Part::editor, Level::idle, "No editor answers.",
                       "Start Neovim, Emacs with its server, or an editor with Navrel's plug-in; "
                       "until then files open in the desktop's application."));
    editor.state = ProgramFacts::Editor::State::follows;
    EXPECT_EQ(sentenceOf(editor), sentence(Part::editor, Level::good, "The editor answers."));
    editor.name = QStringLiteral("Neovim");
    EXPECT_EQ(sentenceOf(editor), sentence(Part::editor, Level::good, "Neovim answers."));
    editor.state = ProgramFacts::Editor::State::silent;
    EXPECT_EQ(sentenceOf(editor), sentence(Part::editor, Level::warning, "Neovim does not answer.",
                                           "Finish the command or the prompt that it waits in."));
    editor.state = ProgramFacts::Editor::State::stopped;
    EXPECT_EQ(sentenceOf(editor), sentence(Part::editor, Level::warning, "Neovim is stopped.",
                                           "Type fg in the shell that it was started from."));
}

TEST(StateSentences, browsersThatCannotReachNavrel) {
    ProgramFacts::Browsers browsers;
    EXPECT_EQ(sentenceOf(browsers),
              sentence(Part::browsers, Level::idle, "No browser can reach Navrel.",
                       "Choose \"Phone or Tablet…\" in Navrel's menu to let one in."));
    browsers.reach = ProgramFacts::Browsers::Reach::machine;
    EXPECT_EQ(sentenceOf(browsers),
              sentence(Part::browsers, Level::idle, "Navrel does not listen for browsers yet."));
    browsers.problem = QStringLiteral("Port 2346 is taken.");
    EXPECT_EQ(sentenceOf(browsers),
              sentence(Part::browsers, Level::warning, "Port 2346 is taken.",
                       "The window \"Phone or Tablet…\" in Navrel's menu has the settings."));
}

TEST(StateSentences, browsersThatCan) {
    ProgramFacts::Browsers browsers;
    browsers.reach = ProgramFacts::Browsers::Reach::machine;
    browsers.address = QStringLiteral("http://localhost:2346");
    browsers.isPlain = true;
    EXPECT_EQ(sentenceOf(browsers),
              sentence(Part::browsers, Level::good,
                       "Paired browsers on this machine can reach Navrel at "
                       "http://localhost:2346: 0 paired, 0 connected.",
                       "Pair a device: navrel-companion pair shows the code."));
    browsers.reach = ProgramFacts::Browsers::Reach::network;
    browsers.isPlain = false;
    browsers.address = QStringLiteral("https://192.168.1.5:2346");
    browsers.paired = 2;
    browsers.connected = 1;
    EXPECT_EQ(sentenceOf(browsers), sentence(Part::browsers, Level::good,
                                             "Paired devices in this network can reach Navrel at "
                                             "https://192.168.1.5:2346: 2 paired, 1 connected."));
    browsers.isPlain = true;
    EXPECT_EQ(sentenceOf(browsers),
              sentence(Part::browsers, Level::warning,
                       "Paired devices in this network can reach Navrel at "
                       "https://192.168.1.5:2346: 2 paired, 1 connected.",
                       "Without encryption, others in the network can read your code: set "
                       "browserPlainHTTP to false."));
}

TEST(StateSentences, theCodeMap) {
    ProgramFacts::CodeMap codeMap;
    EXPECT_EQ(sentenceOf(codeMap),
              sentence(Part::codeMap, Level::idle, "There are no sources to search."));
    codeMap.state = ProgramFacts::CodeMap::State::reading;
    EXPECT_EQ(sentenceOf(codeMap),
              sentence(Part::codeMap, Level::good, "Navrel is reading the sources."));
    codeMap.state = ProgramFacts::CodeMap::State::ready;
    codeMap.files = 1;
    codeMap.symbols = 12;
    EXPECT_EQ(sentenceOf(codeMap),
              sentence(Part::codeMap, Level::good, "12 symbols in 1 file can be searched."));
    codeMap.isWatched = false;
    EXPECT_EQ(sentenceOf(codeMap),
              sentence(Part::codeMap, Level::idle,
                       "12 symbols in 1 file can be searched; Navrel looks for changes once a "
                       "second.",
                       "The system reports no changes, as when its limit of watched folders is "
                       "used up: fs.inotify.max_user_watches sets it."));
}

TEST(StateSentences, updates) {
    ProgramFacts::Update update;
    EXPECT_EQ(sentenceOf(update),
              sentence(Part::update, Level::idle, "Navrel asks no server for updates."));
    update.state = ProgramFacts::Update::State::unreachable;
    EXPECT_EQ(sentenceOf(update),
              sentence(Part::update, Level::idle, "The update server did not answer at start-up.",
                       "Navrel asks it again at its next start."));
    update.state = ProgramFacts::Update::State::current;
    EXPECT_EQ(sentenceOf(update),
              sentence(Part::update, Level::good, "This is the latest version."));
    update.state = ProgramFacts::Update::State::other;
    update.version = QStringLiteral("2.0.0");
    EXPECT_EQ(sentenceOf(update),
              sentence(Part::update, Level::idle, "Another version is available: 2.0.0.",
                       "Restart Navrel to be offered the download."));
}

TEST(StateSentences, eachPartHasOneSentenceAndATitleOfItsOwn) {
    std::set<QString> titles;
    int part = 0;
    for (const StateSentence& each : stateSentences({})) {
        EXPECT_EQ(static_cast<int>(each.part), part++);
        EXPECT_TRUE(each.text.endsWith(u'.')) << each.text.toStdString();
        titles.insert(titleOf(each.part));
    }
    EXPECT_EQ(titles.size(), 6U);
    EXPECT_FALSE(titles.contains(QString()));
}

} // namespace
} // namespace navrel
