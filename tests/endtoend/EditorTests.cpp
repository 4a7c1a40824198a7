// The real program, a device made of sockets, and an editor: the real Neovim, or Xcode's tools as
// stand-ins at the paths where the real ones are.

#include "support/process/ToolRunner.h"
#include "tests/SmallProject.h"
#include "tests/StopProcess.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/endtoend/HeadlessNeovim.h"
#include "tests/endtoend/NavrelProcess.h"
#include "tests/endtoend/StandInTools.h"

#include <QDir>
#include <QProcess>
#include <QSettings>
#include <gtest/gtest.h>

#include <algorithm>

namespace navrel {
namespace {

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (SmallProject* project : {&first_, &second_}) {
            project->writeFile(QStringLiteral("a.m"), "- (void)run {\n}\n");
            project->addEntry("A", "a.m");
        }
        second_.writeFile(QStringLiteral("b.m"), "\n");
        second_.addEntry("B", "b.m");
        ASSERT_TRUE(device_.listen());
    }

    void startNavrel() {
        navrel_.writeDefaults("[General]\nautomaticProjectSelection=true\nlastKnownProject=\"" +
                              first_.bundle().toUtf8() + "\"\n");
        ASSERT_TRUE(navrel_.start());
        ASSERT_TRUE(device_.waitForConnection());
        ASSERT_TRUE(device_.waitUntilServed());
    }

    /// How many files the device shows.
    int shownFiles() {
        const auto root = device_.ask(202);
        return root ? static_cast<int>(root->value(QStringLiteral("items")).toList().size()) : 0;
    }
    QString rememberedProject() const {
        return QSettings(navrel_.defaultsFile(), QSettings::IniFormat)
            .value(QStringLiteral("lastKnownProject"))
            .toString();
    }
    /// Asks for the elements of the file that is active in the editor.
    std::optional<QVariantMap> elementsOfActiveFile() {
        return device_.ask(204, {{QStringLiteral("autoUpdate"), 1}});
    }
    void tap(const QString& path, const QVariant& line) {
        EXPECT_EQ(
            device_.ask(201, {{QStringLiteral("path"), path}, {QStringLiteral("line"), line}}),
            std::nullopt);
    }

    ScratchEnvironment environment_;
    SmallProject first_;
    SmallProject second_;
    NavrelProcess navrel_;
    TestDevice device_;
};

class NeovimTest : public EditorTest {
protected:
    void SetUp() override {
        if (!HeadlessNeovim::isAvailable()) {
            GTEST_SKIP() << "needs nvim";
        }
        const QString socket = environment_.pathOf(QStringLiteral("neovim"));
        environment_.set("NVIM", socket.toUtf8());
        ASSERT_NO_FATAL_FAILURE(EditorTest::SetUp());
        ASSERT_TRUE(neovim_.start(socket, first_.folder() + QStringLiteral("/a.m")));
        ASSERT_NO_FATAL_FAILURE(startNavrel());
    }

    QByteArray valueOf(const char* expression) const {
        return neovim_.valueOf(QString::fromUtf8(expression));
    }

    HeadlessNeovim neovim_;
};

TEST_F(NeovimTest, aTapOnTheDeviceSelectsTheLineInTheEditor) {
    const QString path = second_.folder() + QStringLiteral("/a.m");
    tap(path, QStringLiteral("2"));
    EXPECT_TRUE(waitUntil(
        [&] { return valueOf("expand('%:p') . line('.') . mode()") == path.toUtf8() + "2V"; }));
}

TEST_F(NeovimTest, theProjectOfTheEditorsFileIsFollowedAndRemembered) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    tap(second_.folder() + QStringLiteral("/b.m"), 1);
    EXPECT_TRUE(waitUntil([this] { return shownFiles() == 2; }));
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == second_.bundle(); }));

    tap(first_.folder() + QStringLiteral("/a.m"), 1);
    EXPECT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == first_.bundle(); }));
}

TEST_F(NeovimTest, theProjectThatListsTheEditorsFileComesBeforeTheNearest) {
    const QString library = second_.folder() + QStringLiteral("/Library");
    ASSERT_TRUE(QDir().mkpath(library));
    second_.writeFile(QStringLiteral("Library/c.m"), "\n");
    second_.addEntry("C", "Library/c.m");
    ScratchEnvironment::write(library.toUtf8() + "/Library.xcodeproj/project.pbxproj", "");
    tap(library + QStringLiteral("/c.m"), 1);
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == second_.bundle(); }));
    EXPECT_TRUE(waitUntil([this] { return shownFiles() == 3; }));
}

TEST_F(NeovimTest, theElementsOfTheEditorsFileAreShown) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    std::optional<QVariantMap> elements;
    ASSERT_TRUE(waitUntil([&] { return (elements = elementsOfActiveFile()).has_value(); }));
    EXPECT_EQ(elements->value(QStringLiteral("identifier")).toString(), QStringLiteral("A"));
}

TEST_F(NeovimTest, whileTheEditorIsStoppedRequestsGoOnBeingAnswered) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    const qint64 process = neovim_.processID();
    ASSERT_TRUE(stopProcess(process));
    for (int request = 0; request < 20; ++request) {
        const auto elements = elementsOfActiveFile();
        ASSERT_TRUE(elements.has_value()) << "it still shows what it showed";
        EXPECT_EQ(elements->value(QStringLiteral("identifier")).toString(), QStringLiteral("A"));
        EXPECT_EQ(shownFiles(), 1);
    }

    ASSERT_TRUE(continueProcess(process));
    EXPECT_TRUE(elementsOfActiveFile().has_value());
}

TEST_F(NeovimTest, whileTheEditorIsBusyItsProjectStays) {
    ASSERT_TRUE(waitUntil([this] { return elementsOfActiveFile().has_value(); }));
    // Half a command: the name of a register is to follow.
    valueOf("feedkeys('\"')");
    const QDeadlineTimer whileItLasts(std::chrono::seconds(3)); // three updates
    ASSERT_TRUE(waitUntil([&] { return whileItLasts.hasExpired() || shownFiles() != 1; }));
    EXPECT_TRUE(whileItLasts.hasExpired()) << "the project was emptied";
    EXPECT_EQ(rememberedProject(), first_.bundle());
    EXPECT_TRUE(elementsOfActiveFile().has_value());
    // And the project is told again once nobody is there any more.
    neovim_.kill();
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == QStringLiteral(""); }));
}

class XcodeTest : public EditorTest {
protected:
    void SetUp() override {
        if (tools_.failure()) {
            GTEST_SKIP() << tools_.failure()->constData();
        }
        // Each call is recorded whole, since calls run at the same time: NUL ends an argument.
        const QByteArray record = "record=" + tools_.pathOf("$$") +
                                  "\n{ printf '%s\\0' \"${0##*/}\" \"$@\"; } >\"$record.part\"\n"
                                  "mv \"$record.part\" \"$record.call\"\n";
        tools_.put("xed", record);
        tools_.put("osascript", "case $2 in\n*'active workspace document'*) cat " +
                                    tools_.pathOf("project") + ";;\n*'return name of'*) cat " +
                                    tools_.pathOf("file") + ";;\n*)\n" + record + ";;\nesac\n");
        setActive(first_, "a.m");
        ASSERT_NO_FATAL_FAILURE(EditorTest::SetUp());
        ASSERT_NO_FATAL_FAILURE(startNavrel());
    }

    void setActive(const SmallProject& project, const QByteArray& file) const {
        ScratchEnvironment::write(tools_.pathOf("project"),
                                  project.bundle().toUtf8() + "/project.xcworkspace\n");
        ScratchEnvironment::write(tools_.pathOf("file"), file + '\n');
    }

    /// The calls so far that were no questions: the tool and its arguments, NUL behind each.
    QByteArrayList calls() const {
        QByteArrayList found;
        const QDir folder(tools_.folder());
        for (const QString& call : folder.entryList({QStringLiteral("*.call")})) {
            found.append(ScratchEnvironment::read(folder.filePath(call).toUtf8()));
        }
        std::sort(found.begin(), found.end());
        return found;
    }

    static QByteArray call(const QByteArrayList& arguments) { return arguments.join('\0') + '\0'; }

    StandInTools tools_;
};

TEST_F(XcodeTest, aTapRunsBothToolsAtTheirPlacesWithTheirArguments) {
    const QString path = first_.folder() + QStringLiteral("/a.m");
    tap(path, 42);
    const QByteArray jump = "        delay 0.1\n"
                            "        tell application \"Xcode\"\n"
                            "        set activeFile to name of first window\n"
                            "        tell document named activeFile\n"
                            "        set selected paragraph range to {42, 42}\n"
                            "        delay 0.1\n"
                            "        tell application \"System Events\"\n"
                            "        keystroke \"l\" using {command down, shift down}\n"
                            "        end tell\n"
                            "        end tell\n"
                            "        end tell\n";
    const QByteArrayList wanted = {call({"osascript", "-e", jump}), call({"xed", path.toUtf8()})};
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 2; }));
    EXPECT_EQ(calls(), wanted);
}

TEST_F(XcodeTest, withoutALineOnlyTheFileIsOpened) {
    const QString path = first_.folder() + QStringLiteral("/a.m");
    device_.ask(201, {{QStringLiteral("path"), path}});
    tap(path, 1); // whose calls come later
    EXPECT_TRUE(waitUntil([&] { return calls().size() == 3; }));
    EXPECT_EQ(calls().count(call({"xed", path.toUtf8()})), 2);
}

TEST_F(XcodeTest, theActiveProjectIsFollowedAndRemembered) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    setActive(second_, "b.m");
    EXPECT_TRUE(waitUntil([this] { return shownFiles() == 2; }));
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == second_.bundle(); }));
    setActive(first_, "a.m");
    EXPECT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
}

TEST_F(XcodeTest, theElementsOfTheActiveFileAreShown) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    const auto elements = elementsOfActiveFile();
    ASSERT_TRUE(elements.has_value());
    EXPECT_EQ(elements->value(QStringLiteral("identifier")).toString(), QStringLiteral("A"));
    EXPECT_EQ(calls(), QByteArrayList());
}

TEST_F(XcodeTest, withNothingActiveTheEmptyProjectIsRemembered) {
    ASSERT_TRUE(waitUntil([this] { return shownFiles() == 1; }));
    ScratchEnvironment::write(tools_.pathOf("project"), "");
    EXPECT_TRUE(waitUntil([this] { return !device_.ask(202).has_value(); }));
    EXPECT_TRUE(waitUntil([this] { return rememberedProject() == QStringLiteral(""); }));
}

} // namespace
} // namespace navrel
