#include "companion/terminal/ClassTree.h"
#include "companion/terminal/Doctor.h"
#include "companion/terminal/Follow.h"
#include "companion/terminal/MapText.h"
#include "companion/terminal/Output.h"
#include "companion/terminal/StateText.h"
#include "companion/terminal/Theme.h"
#include "companion/terminal/ViewAccess.h"
#include "companion/terminal/Waiting.h"
#include "tests/companion/ShortText.h"

#include <QStringList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <clocale>

namespace navrel {
namespace {

using Background = TerminalText::Background;

const TerminalText kPlain(TerminalText::Style::plain);

TEST(Output, longLinesAreBrokenAtBlanksBelowTheirSecondColumn) {
    EXPECT_EQ(wrappedLine(text("short"), 10), text("short"));
    EXPECT_EQ(wrappedLine(text("one two three four"), 10), text("one two\n  three\n  four"));
    EXPECT_EQ(wrappedLine(text("tree  all groups and files"), 16),
              text("tree  all groups\n      and files"));
    EXPECT_EQ(wrappedLine(text("abcdefghij"), 4), text("abcd\n  ef\n  gh\n  ij"));
    EXPECT_EQ(wrappedLine(text("one two"), 0), text("one two"));
}

TEST(Output, escapesTakeNoColumns) {
    EXPECT_EQ(columnsOf(text("\x1B[1mone\x1B[0m")), 3);
    EXPECT_EQ(wrappedLine(text("\x1B[1mone\x1B[0m two"), 7), text("\x1B[1mone\x1B[0m two"));
}

TEST(Output, withoutUnicodeSignsAreDrawnInASCII) {
    EXPECT_EQ(asASCII(text("├── “a”… é")), text("|-- \"a\"... <U+00E9>"));
    EXPECT_EQ(fitted(text("└── a"), {false, false, 0, 0}), text("`-- a"));
    EXPECT_EQ(fitted(text("one two"), {true, true, 5, 9}), text("one\n  two"));
    EXPECT_EQ(fitted(text("one two"), {false, true, 4, 9}), text("one two"));
}

TEST(Theme, theBackgroundIsReadFromTheVariable) {
    EXPECT_EQ(backgroundOfVariable("15;0"), Background::dark);
    EXPECT_EQ(backgroundOfVariable("0;default;15"), Background::light);
    EXPECT_EQ(backgroundOfVariable("0;7"), Background::light);
    EXPECT_EQ(backgroundOfVariable("0;8"), Background::dark);
    for (const char* other : {"", "15", "0;default", "0;16", "0;-1"}) {
        EXPECT_EQ(backgroundOfVariable(other), Background::unknown) << other;
    }
}

TEST(Theme, theBackgroundIsReadFromTheTerminalsReply) {
    EXPECT_EQ(backgroundOfReply("\x1B]11;rgb:ffff/ffff/ffff\x1B\\\x1B[?62c"), Background::light);
    EXPECT_EQ(backgroundOfReply("\x1B]11;rgb:00/2b/36\a"), Background::dark);
    EXPECT_EQ(backgroundOfReply("\x1B]11;rgb:0000/0000/ffff\a"), Background::dark);
    for (const char* other : {"", "\x1B[?62c", "\x1B]11;rgb:ffff/ffff\a", "\x1B]11;rgb:x/y/z\a",
                              "\x1B]11;rgb:fffff/0/0\a"}) {
        EXPECT_EQ(backgroundOfReply(other), Background::unknown) << other;
    }
}

TEST(ClassTree, whatHasTwoParentsOrDerivesFromItselfIsEnteredOnce) {
    const auto types = *objectIn(R"json({"items":[
        {"name":"A","kind":"class","known":true},
        {"name":"B","kind":"class","inherits":["A"],"file":{"path":"b"},"line":1,"known":true},
        {"name":"C","kind":"class","inherits":["A"],"file":{"path":"c"},"line":2,"known":true},
        {"name":"D","kind":"class","inherits":["B","C"],"file":{"path":"d"},"line":3},
        {"name":"E","kind":"class","inherits":["D"],"file":{"path":"e"},"line":4},
        {"name":"X","kind":"class","inherits":["Y"],"file":{"path":"x"},"line":5},
        {"name":"Y","kind":"class","inherits":["X"],"file":{"path":"y"},"line":6}]})json");
    const ClassTree tree(types, kPlain);
    EXPECT_EQ(tree.all(), text("A\n  B  b:1\n    D  d:3\n      E  e:4\n  C  c:2\n    D  d:3\n"));
    EXPECT_EQ(tree.below("x"), text("Y  y:6\n  X  x:5\n"));
    EXPECT_EQ(tree.below("E"), text(""));
    EXPECT_EQ(tree.below("Z"), std::nullopt);
}

TEST(Follow, aScreenShowsThePartAroundTheLitLine) {
    const QStringList lines = text("0 1 2 3 4 5 6 7 8 9").split(u' ');
    const auto around = [&lines](qsizetype lit, int height) {
        return linesAround(lines, lit, height).join(QString());
    };
    EXPECT_EQ(around(5, 20), text("0123456789"));
    EXPECT_EQ(around(5, 4), text("3456"));
    EXPECT_EQ(around(0, 4), text("0123"));
    EXPECT_EQ(around(9, 4), text("6789"));
    EXPECT_EQ(around(-1, 3), text("012"));
    EXPECT_EQ(around(4, 0), text("4"));
}

TEST(Follow, theDeclarationAroundTheCursorIsLit) {
    const auto outline = *objectIn(R"json({"items":[{"name":"Tide","kind":"class","line":1,
        "children":[{"name":"rise()","kind":"method","line":2}]}]})json");
    const MapText coloured(TerminalText(TerminalText::Style::coloured));
    const auto lines = coloured.outlineLines(outline, 2);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.at(1).second, text("\x1B[7m     2    method rise()\x1B[0m"));
    EXPECT_FALSE(lines.at(0).second.contains(text("\x1B[7m")));
}

TEST(Waiting, itSaysForWhatHowLongAndWhatWouldHelp) {
    using std::chrono::seconds;
    EXPECT_EQ(waitingText(Wait::navrel, seconds(3), seconds(60), false),
              text("Waiting for Navrel (3 of 60 s): start it with navrel, as the same user."));
    EXPECT_EQ(waitingText(Wait::navrel, seconds(3), seconds(60), true),
              text("Waiting for Navrel to connect to port 2345 (3 of 60 s): start navrel, and "
                   "disconnect any other device."));
    EXPECT_EQ(waitingText(Wait::project, seconds(1), seconds(10), false),
              text("Waiting for Navrel to read a project (1 of 10 s): open one in your editor, or "
                   "choose one in Navrel's menu."));
}

TEST(Doctor, theHomeFolderIsShortened) {
    EXPECT_EQ(withoutHome(text("/home/ann/a /home/anna/b"), text("/home/ann")),
              text("~/a /home/anna/b"));
    EXPECT_EQ(withoutHome(text("/a"), text("/")), text("/a"));
}

TEST(Doctor, withoutNavrelItSaysWhatIsThere) {
    DoctorFacts facts;
    facts.version = text("1.2.3");
    facts.system = text("System 1");
    facts.home = text("/home/ann");
    facts.locale = text("C");
    EXPECT_EQ(doctorText(facts, nullptr, kPlain),
              text("Companion 1.2.3\n"
                   "System    System 1\n"
                   "Terminal  none\n"
                   "Locale    C\n"
                   "Navrel    No Navrel of yours is running.\n"
                   "          Start it with: navrel\n"
                   "Socket    XDG_RUNTIME_DIR is not set.\n"
                   "          Log in through the system's login manager or over SSH, or set it to "
                   "a folder of your own.\n"
                   "USB       The USB daemon is not there; it starts with the first device.\n"));
    facts.socket = "/home/ann/run/socket";
    facts.isUSBDaemonThere = true;
    facts.terminal = text("xterm");
    facts.traits = {true, true, 80, 24};
    const QString report = doctorText(facts, nullptr, kPlain);
    EXPECT_TRUE(report.contains(text("Socket    ~/run/socket is not there.\n")));
    EXPECT_TRUE(report.contains(text("Terminal  xterm, 80 columns, 24 lines\n")));
    EXPECT_TRUE(report.contains(text("USB       The USB daemon is there.\n")));
}

TEST(StateText, whatIsAmissIsColouredAndItsRemedyIsBelow) {
    const auto state = *objectIn(R"json({"sentences":[
        {"part":"Device","level":"warning","text":"No app listens.","hint":"Open it."}],
        "messages":[{"level":"warning","text":"The port is taken."}]})json");
    EXPECT_EQ(stateText(state, kPlain), text("Device    No app listens.\n"
                                             "          Open it.\n"
                                             "Note      The port is taken.\n"));
    EXPECT_TRUE(stateText(state, TerminalText(TerminalText::Style::coloured, Background::light))
                    .contains(text("\x1B[31mNo app listens.\x1B[0m")));
}

TEST(MapText, aScreenReaderHearsNoDrawings) {
    const auto tree = *objectIn(R"json({"root":{"name":"App","kind":"project","children":[
        {"name":"Lib","kind":"group","children":[{"name":"a.m","kind":"file"}]},
        {"name":"b.m","kind":"file"}]}})json");
    EXPECT_EQ(MapText(TerminalText(TerminalText::Style::spoken)).tree(tree),
              text("App (project)\n  Lib\n    a.m\n  b.m\n"));
}

} // namespace
} // namespace navrel
