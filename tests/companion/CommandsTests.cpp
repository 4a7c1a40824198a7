#include "companion/terminal/Commands.h"
#include "companion/terminal/WireSource.h"
#include "protocol/CompanionProtocol.h"
#include "tests/companion/ShortText.h"

#include <QStringList>
#include <QVariantList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <ostream>

namespace navrel {
namespace {

struct Question {
    quint32 type;
    QVariantMap request;
    bool operator==(const Question&) const = default;
};

void PrintTo(const Question& question, std::ostream* stream) {
    *stream << question.type << " with " << question.request.size() << " keys";
}

QVariantMap item(const char* name, const char* identifier, bool isGroup, const char* path) {
    return {{text("name"), text(name)},
            {text("identifier"), text(identifier)},
            {text("isGroup"), isGroup ? 1 : 0},
            {text("path"), text(path)}};
}

QVariantMap element(const char* type, const char* name, int line) {
    return {{text("type"), text(type)}, {text("name"), text(name)}, {text("line"), line}};
}

QVariantMap items(const QVariantList& list) {
    return {{text("items"), list}};
}

/// Commands against a Navrel that serves a small project to a device.
class CommandsTest : public ::testing::Test {
protected:
    CommandsTest() {
        QVariantMap root = items(
            {item("Views", "G1", true, "/p/Views"), item("main.m", "F1", false, "/p/main.m")});
        root.insert(text("label"), text("App"));
        root.insert(text("identifier"), text("MAIN"));
        root.insert(text("path"), text("/p"));
        answers_[kFrameRootNavigator] = root;
        answers_[kFrameNavigator] = items({item("TideView.m", "F2", false, "/p/Views/TideView.m"),
                                           item("TideView.h", "F3", false, "/p/Views/TideView.h")});
        answers_[kFrameElements] =
            items({element("class", "TideView", 3), element("mark", "Drawing", 9),
                   element("method", "-rise:", 12), element("warning", "fix", 101)});
        answers_[kFrameElements].insert(text("title"), text("TideView.m"));
        answers_[kFrameElements].insert(text("path"), text("/p/Views/TideView.m"));
        answers_[kFrameFileTypes] =
            items({QVariantMap{{text("extension"), text("m")}, {text("allowed"), 1}},
                   QVariantMap{{text("extension"), text("plist")}, {text("allowed"), 0}},
                   QVariantMap{{text("extension"), text("")}, {text("allowed"), 1}}});
        answers_[kFrameChangeFileType] = answers_[kFrameFileTypes];
        answers_[kFrameSuperclasses] = items({text("UIView")});
        answers_[kFrameShortcuts] = items({QVariantMap{{text("shortcut"), text("Start")},
                                                       {text("path"), text("/p/main.m")},
                                                       {text("line"), 7}}});
        answers_[kFrameProject] = {{text("project"), text("/p")}};
        answers_[kFrameVersion] = {{text("version"), text("1.4")}};
    }

    CommandResult run(const QString& line, bool isJSON = false) {
        printed_.clear();
        questions_.clear();
        Commands commands({source_, [this](const QString& its) { printed_ += its; },
                           [this](const QString& its) { printed_ += u'!' + its + u'\n'; },
                           TerminalText(TerminalText::Style::plain), isJSON});
        return commands.run(line);
    }
    std::string output(const char* line, CommandResult result = CommandResult::done) {
        EXPECT_EQ(run(text(line)), result) << line;
        return printed_.toStdString();
    }

    std::map<quint32, QVariantMap> answers_;
    std::vector<Question> questions_;
    QString printed_;
    WireSource source_{
        [this](quint32 type, const QVariantMap& request) -> std::optional<QVariantMap> {
            questions_.push_back({type, request});
            const auto answer = answers_.find(type);
            return answer == answers_.end() ? std::nullopt : std::optional(answer->second);
        }};
};

TEST_F(CommandsTest, anEmptyLineDoesNothingAndQuitHasThreeNames) {
    EXPECT_EQ(output("   "), "");
    EXPECT_TRUE(questions_.empty());
    for (const char* line : {"quit", " EXIT ", "Quit"}) {
        EXPECT_TRUE(Commands::isQuit(text(line)));
    }
    EXPECT_FALSE(Commands::isQuit(text("tree")));
}

TEST_F(CommandsTest, anUnknownCommandPointsToLikelyOnesAndToHelp) {
    EXPECT_EQ(output("tre", CommandResult::usage),
              "!There is no command \"tre\".\nDid you mean tree? \"help\" lists all commands.\n");
    EXPECT_EQ(output("dance", CommandResult::usage),
              "!There is no command \"dance\".\n\"help\" lists all commands.\n");
}

TEST_F(CommandsTest, helpListsWhatADeviceIsServedAndExplainsEachCommand) {
    const std::string help = output("?");
    for (const CommandInfo& command : commandTable()) {
        EXPECT_EQ(help.find('\n' + command.name.toStdString() + ' ') != std::string::npos ||
                      help.starts_with(command.name.toStdString()),
                  !command.needsCodeMap)
            << command.name.toStdString();
        EXPECT_THAT(output(("HELP " + command.name.toStdString()).c_str()),
                    ::testing::HasSubstr(command.summary.toStdString()));
    }
    output("help dance", CommandResult::usage);
}

TEST_F(CommandsTest, wrongArgumentsAreAnsweredByTheUsage) {
    EXPECT_THAT(output("outline", CommandResult::usage),
                ::testing::StartsWith("!Usage: outline FILE\n"));
    for (const char* name : {"shortcuts", "project", "version", "quit"}) {
        EXPECT_EQ(output((std::string(name) + " now").c_str(), CommandResult::usage),
                  std::string("!Usage: ") + name + "\nIt takes nothing behind its name.\n");
    }
    EXPECT_THAT(output("filter m maybe", CommandResult::usage),
                ::testing::StartsWith("!Usage: filter [EXT on|off]\n"));
    EXPECT_THAT(output("types UIView", CommandResult::usage),
                ::testing::HasSubstr("classes UIView\n"));
    EXPECT_TRUE(questions_.empty());
}

TEST_F(CommandsTest, whatADeviceIsNotServedSaysHowToGetIt) {
    EXPECT_THAT(output("find x", CommandResult::notFound),
                ::testing::HasSubstr("without --device"));
}

TEST_F(CommandsTest, theTreeAndAGroupAreShown) {
    EXPECT_EQ(output("tree"),
              "App\n├── Views\n│   ├── TideView.m\n│   └── TideView.h\n└── main.m\n");
    EXPECT_EQ(output("ls"), "App  /p\nViews/\nmain.m\n");
    EXPECT_EQ(output("ls views"), "Views  /p/Views\nTideView.m\nTideView.h\n");
    EXPECT_EQ(output("ls G1"), output("ls /p/Views"));
    EXPECT_EQ(output("tree Views"), "Views\n├── TideView.m\n└── TideView.h\n");
    EXPECT_EQ(output("ls main.m", CommandResult::notFound),
              "!The project has no group \"main.m\".\n\"tree\" shows all files.\n");
}

TEST_F(CommandsTest, filesAreNamedByIdentifierPathNameOrPart) {
    for (const char* name : {"F2", "/p/Views/TideView.m", "Views/TideView.m", "tideview.M",
                             "\"TideView.m\"", "View.m"}) {
        run(text("outline ") + text(name));
        ASSERT_FALSE(questions_.empty()) << name;
        EXPECT_EQ(questions_.back(), (Question{kFrameElements, {{text("identifier"), text("F2")}}}))
            << name;
    }
    EXPECT_EQ(output("outline tide", CommandResult::notFound),
              "!2 files fit \"tide\":\n  /p/Views/TideView.m\n  /p/Views/TideView.h\n"
              "Type more of the one that you mean.\n");
    EXPECT_EQ(output("elements nope", CommandResult::notFound),
              "!The project has no file \"nope\".\n\"tree\" shows all files.\n");
}

TEST_F(CommandsTest, anOutlineShowsDeclarationsMarksAndWarnings) {
    EXPECT_EQ(output("outline F2"), "TideView.m  /p/Views/TideView.m\n"
                                    "     3  class TideView\n"
                                    "     9  ── Drawing\n"
                                    "    12  method -rise:\n"
                                    "   101  warning: fix\n");
    answers_[kFrameElements].insert(text("items"), QVariantList());
    EXPECT_EQ(output("outline F2"), "TideView.m  /p/Views/TideView.m\nIt declares nothing.\n");
    answers_.erase(kFrameElements);
    EXPECT_EQ(output("outline F2", CommandResult::notFound),
              "!This file has no outline.\nOnly sources have one.\n");
}

TEST_F(CommandsTest, openTakesALineASymbolOrNeither) {
    const auto opened = [this](const char* line, const std::string& place) {
        EXPECT_EQ(output(line), "Navrel was asked to open " + place + ".\n");
        return questions_.back().request;
    };
    const QString path = text("/p/Views/TideView.m");
    for (const char* line : {"open TideView.m", "open TideView.m:"}) {
        EXPECT_EQ(opened(line, "TideView.m"), (QVariantMap{{text("path"), path}}));
    }
    for (const char* line : {"open TideView.m:42", "edit TideView.m 42"}) {
        EXPECT_EQ(opened(line, "TideView.m:42"),
                  (QVariantMap{{text("path"), path}, {text("line"), 42U}}));
    }
    for (const char* line : {"open TideView.m:rise", "open TideView.m:-rise:"}) {
        EXPECT_EQ(opened(line, "TideView.m:12"),
                  (QVariantMap{{text("path"), path}, {text("line"), 12U}}));
    }
    EXPECT_EQ(opened("open /dev/null:3", "/dev/null:3"),
              (QVariantMap{{text("path"), text("/dev/null")}, {text("line"), 3U}}));
}

TEST_F(CommandsTest, openSaysWhatIsNotThere) {
    EXPECT_EQ(output("open /nope:3", CommandResult::notFound),
              "!The project has no file \"/nope\".\n\"tree\" shows all files.\n");
    EXPECT_EQ(
        output("open TideView.m:fall", CommandResult::notFound),
        "!TideView.m declares no \"fall\".\n\"outline TideView.m\" shows what it declares.\n");
    for (const char* line : {"open tide:3", "open tide:fall"}) {
        EXPECT_THAT(output(line, CommandResult::notFound),
                    ::testing::StartsWith("!2 files fit \"tide\":\n"));
    }
    EXPECT_EQ(output("open tide:rise", CommandResult::notFound),
              "!2 symbols fit \"rise\":\n  /p/Views/TideView.m:12  -rise:\n"
              "  /p/Views/TideView.h:12  -rise:\nType more of the one that you mean.\n");
}

TEST_F(CommandsTest, classesAreShownWithWhatDerivesFromThem) {
    EXPECT_EQ(output("classes"), "UIView\n  TideView.m  /p/Views/TideView.m\n"
                                 "  TideView.h  /p/Views/TideView.h\n");
    EXPECT_EQ(output("class UIView"), "TideView.m  /p/Views/TideView.m\n"
                                      "TideView.h  /p/Views/TideView.h\n");
    EXPECT_THAT(output("class Foo", CommandResult::notFound), ::testing::HasSubstr("classes"));
}

TEST_F(CommandsTest, fileTypesAreListedAndSwitched) {
    EXPECT_EQ(output("types"), "on  m\noff plist\non  (no extension)\n");
    for (const char* line : {"type plist on", "filter plist ON", "show plist", "show .plist",
                             "show *.plist", "show PLIST", "show plists"}) {
        run(text(line));
        EXPECT_EQ(questions_.back(),
                  (Question{kFrameChangeFileType,
                            {{text("extension"), text("plist")}, {text("allowed"), 1}}}))
            << line;
    }
    run(text("hide m"));
    EXPECT_EQ(questions_.back().request.value(text("allowed")), 0);
    run(text("type on")); // the type without an extension
    EXPECT_EQ(questions_.back().request.value(text("extension")), text(""));
    EXPECT_EQ(output("hide xib", CommandResult::notFound),
              "!The project has no files of type \"xib\".\n\"filter\" lists the types that it "
              "has.\n");
}

TEST_F(CommandsTest, shortcutsProjectAndVersionAreShown) {
    EXPECT_EQ(output("shortcuts"), "/p/main.m:7  shortcut Start\n");
    EXPECT_EQ(output("project"), "/p\n");
    EXPECT_EQ(output("version"), "Navrel 1.4\n");
}

TEST_F(CommandsTest, withoutAProjectEachCommandSaysSo) {
    answers_.clear();
    for (const char* line : {"tree", "ls", "outline x", "open x", "overview", "project"}) {
        EXPECT_THAT(output(line, CommandResult::notFound),
                    ::testing::StartsWith("!No project is loaded.\nOpen a file of"))
            << line;
    }
}

TEST_F(CommandsTest, theOverviewShowsEverySection) {
    const std::string overview = output("overview");
    for (const char* section :
         {"Project\n/p\n", "Navigator\nApp\n", "Superclasses\nUIView\n", "File types\non  m\n",
          "Shortcuts\n/p/main.m:7", "Elements\nTideView.m  /p/Views/TideView.m\n"}) {
        EXPECT_THAT(overview, ::testing::HasSubstr(section));
    }
}

TEST_F(CommandsTest, answersAndFailuresAreJSONWhereThatIsAskedFor) {
    run(text("shortcuts"), true);
    EXPECT_EQ(printed_.toStdString(),
              "{\"items\":[{\"kind\":\"shortcut\",\"text\":\"Start\",\"line\":7,\"file\":{\"path\":"
              "\"/p/main.m\"}}],\"revision\":0}\n");
    EXPECT_EQ(run(text("outline nope"), true), CommandResult::notFound);
    EXPECT_EQ(printed_.toStdString(), "{\"error\":\"The project has no file \\\"nope\\\".\","
                                      "\"hint\":\"\\\"tree\\\" shows all files.\"}\n");
}

TEST_F(CommandsTest, aGroupWithinItselfIsEnteredOnce) {
    answers_[kFrameNavigator] = items({item("Views", "G1", true, "/p/Views")});
    EXPECT_EQ(output("tree"), "App\n├── Views\n│   └── Views\n└── main.m\n");
}

TEST_F(CommandsTest, nothingThatIsPrintedDrivesOrDeceivesTheTerminal) {
    const QString hostile =
        QStringLiteral("\x1B]0;x\a\u202E\u200B\u009B\r") + QString::fromUcs4(U"\U000E0041", 1);
    QVariantMap everything;
    for (const char* key :
         {"label", "path", "name", "identifier", "isGroup", "title", "counterpart", "type", "line",
          "shortcut", "extension", "allowed", "project", "version", "superclass"}) {
        everything.insert(QLatin1String(key), hostile);
    }
    QString all;
    QVariantMap one = everything;
    for (const char* type : {"class", "mark", "warning", "shortcut"}) {
        one.insert(text("type"), text(type));
        for (const QVariant& entry : {QVariant(one), QVariant(hostile), QVariant(everything)}) {
            QVariantMap reply = everything;
            reply.insert(text("items"), QVariantList{entry});
            for (const quint32 frame : {kFrameNavigator, kFrameRootNavigator, kFrameShortcuts,
                                        kFrameElements, kFrameFileTypes, kFrameChangeFileType,
                                        kFrameSuperclasses, kFrameProject, kFrameVersion}) {
                answers_[frame] = reply;
            }
            for (const QString& line :
                 {text("tree"), text("ls"), text("ls x"), text("overview"), text("classes"),
                  text("types"), text("shortcuts"), text("project"), text("version"),
                  text("outline ") + hostile, text("open ") + hostile, text("class ") + hostile,
                  text("open x:") + hostile, text("filter ") + hostile + text(" on"),
                  text("help ") + hostile, hostile, text("find ") + hostile}) {
                run(line);
                all += printed_;
            }
        }
    }
    ASSERT_FALSE(all.isEmpty());
    for (const char16_t character : u"\x1B\a\u202E\u200B\u009B\r\xDB40") {
        EXPECT_TRUE(character == 0 || !all.contains(QChar(character)))
            << static_cast<int>(character);
    }
}

} // namespace
} // namespace navrel
