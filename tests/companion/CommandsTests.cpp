#include "companion/Commands.h"
#include "protocol/CompanionProtocol.h"

#include <QVariantList>
#include <gtest/gtest.h>

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

/// Commands against a Navrel that gives prepared answers, in order.
class CommandsTest : public ::testing::Test {
protected:
    std::optional<QVariantMap> answer_;
    std::vector<Question> questions_;
    QStringList printed_;

    bool run(const QString& line) {
        Commands commands(
            [this](quint32 type, const QVariantMap& request) {
                questions_.push_back({type, request});
                return answer_;
            },
            [this](const QString& text) { printed_.append(text); },
            TerminalText(TerminalText::Style::plain));
        return commands.run(line);
    }

    static QVariantMap items(const QVariantList& list) { return {{QStringLiteral("items"), list}}; }
};

TEST_F(CommandsTest, quitEndsAndAnEmptyLineDoesNothing) {
    EXPECT_FALSE(run(QStringLiteral("quit")));
    EXPECT_TRUE(run(QStringLiteral("   ")));
    EXPECT_TRUE(questions_.empty());
    EXPECT_TRUE(printed_.isEmpty());
}

TEST_F(CommandsTest, anUnknownCommandPointsToHelp) {
    EXPECT_TRUE(run(QStringLiteral("dance")));
    ASSERT_EQ(printed_.size(), 1);
    EXPECT_TRUE(printed_.at(0).contains(QStringLiteral("help")));
}

TEST_F(CommandsTest, helpListsEveryCommand) {
    EXPECT_TRUE(run(QStringLiteral("help")));
    const QString text = printed_.join(QLatin1Char('\n'));
    for (const char* name : {"tree", "ls", "elements", "classes", "class", "types", "type",
                             "shortcuts", "open", "project", "version", "help", "quit"}) {
        EXPECT_TRUE(text.contains(QLatin1String(name))) << name;
    }
}

TEST_F(CommandsTest, lsAsksForTheGroupOrTheMainGroup) {
    run(QStringLiteral("ls 7A1D"));
    run(QStringLiteral("ls"));
    EXPECT_EQ(questions_,
              (std::vector<Question>{
                  {kFrameNavigator, {{QStringLiteral("identifier"), QStringLiteral("7A1D")}}},
                  {kFrameRootNavigator, {}}}));
}

TEST_F(CommandsTest, lsOfAnUnknownIdentifierSaysThatItShowsTheMainGroup) {
    answer_ = QVariantMap{{QStringLiteral("identifier"), QStringLiteral("MAIN")},
                          {QStringLiteral("label"), QStringLiteral("App")},
                          {QStringLiteral("path"), QStringLiteral("/p")},
                          {QStringLiteral("items"), QVariantList()}};
    run(QStringLiteral("ls OTHER"));
    EXPECT_EQ(printed_,
              (QStringList{QStringLiteral("Nothing has this identifier; this is the main group."),
                           QStringLiteral("App  /p")}));
}

TEST_F(CommandsTest, openSendsThePathAndTheLineBehindTheLastColon) {
    run(QStringLiteral("open /a b/c:d.m:42"));
    run(QStringLiteral("open /a/b.m"));
    run(QStringLiteral("open /a:b"));
    EXPECT_EQ(questions_,
              (std::vector<Question>{
                  {kFrameOpenFile,
                   {{QStringLiteral("path"), QStringLiteral("/a b/c:d.m")},
                    {QStringLiteral("line"), 42}}},
                  {kFrameOpenFile, {{QStringLiteral("path"), QStringLiteral("/a/b.m")}}},
                  {kFrameOpenFile, {{QStringLiteral("path"), QStringLiteral("/a:b")}}}}));
}

TEST_F(CommandsTest, typeSwitchesAnExtensionAndShowsTheNewList) {
    answer_ = items({QVariantMap{{QStringLiteral("extension"), QStringLiteral("h")},
                                 {QStringLiteral("allowed"), 1}},
                     QVariantMap{{QStringLiteral("extension"), QStringLiteral("m")},
                                 {QStringLiteral("allowed"), 0}}});
    run(QStringLiteral("type m off"));

    EXPECT_EQ(questions_,
              (std::vector<Question>{{kFrameChangeFileType,
                                      {{QStringLiteral("extension"), QStringLiteral("m")},
                                       {QStringLiteral("allowed"), 0}}}}));
    EXPECT_EQ(printed_, (QStringList{QStringLiteral("on  h"), QStringLiteral("off m")}));
}

TEST_F(CommandsTest, theTypeWithoutExtensionCanBeSwitched) {
    run(QStringLiteral("type on"));
    EXPECT_EQ(questions_,
              (std::vector<Question>{{kFrameChangeFileType,
                                      {{QStringLiteral("extension"), QStringLiteral("")},
                                       {QStringLiteral("allowed"), 1}}}}));
}

TEST_F(CommandsTest, typeWithoutASettingShowsItsUsage) {
    run(QStringLiteral("type m maybe"));
    EXPECT_TRUE(questions_.empty());
    EXPECT_EQ(printed_, QStringList{QStringLiteral("type EXT on|off")});
}

TEST_F(CommandsTest, shortcutsShowTheirPlace) {
    answer_ = items({QVariantMap{{QStringLiteral("shortcut"), QStringLiteral("Start")},
                                 {QStringLiteral("path"), QStringLiteral("/p/a.m")},
                                 {QStringLiteral("line"), 7}}});
    run(QStringLiteral("shortcuts"));
    EXPECT_EQ(printed_, QStringList{QStringLiteral("Start  /p/a.m:7")});
}

TEST_F(CommandsTest, withoutAProjectTheTreeSaysSo) {
    run(QStringLiteral("tree"));
    EXPECT_EQ(printed_, QStringList{QStringLiteral("No project is loaded.")});
}

TEST_F(CommandsTest, theOverviewShowsEverySectionAndTheLongestOutline) {
    const auto file = [](const char* identifier) {
        return QVariantMap{{QStringLiteral("name"), QLatin1String(identifier)},
                           {QStringLiteral("identifier"), QLatin1String(identifier)},
                           {QStringLiteral("isGroup"), 0}};
    };
    const auto outline = [](int length) {
        QVariantList elements;
        for (int line = 1; line <= length; ++line) {
            elements.append(QVariantMap{{QStringLiteral("type"), QStringLiteral("class")},
                                        {QStringLiteral("name"), QStringLiteral("C")},
                                        {QStringLiteral("line"), line}});
        }
        return elements;
    };
    Commands commands(
        [&](quint32 type, const QVariantMap& request) -> std::optional<QVariantMap> {
            const QString identifier = request.value(QStringLiteral("identifier")).toString();
            if (type == kFrameRootNavigator) {
                return QVariantMap{{QStringLiteral("label"), QStringLiteral("App")},
                                   {QStringLiteral("items"),
                                    QVariantList{file("none"), file("short"), file("long")}}};
            }
            if (type == kFrameElements) {
                const int length = identifier == QStringLiteral("long")    ? 3
                                   : identifier == QStringLiteral("short") ? 1
                                                                           : 0;
                return QVariantMap{{QStringLiteral("title"), identifier},
                                   {QStringLiteral("path"), QStringLiteral("/p")},
                                   {QStringLiteral("items"), outline(length)}};
            }
            return std::nullopt;
        },
        [this](const QString& text) { printed_.append(text); },
        TerminalText(TerminalText::Style::plain));
    commands.showOverview();

    for (const char* section :
         {"Project", "Navigator", "Superclasses", "File types", "Shortcuts", "Elements"}) {
        EXPECT_TRUE(printed_.contains(QLatin1String(section))) << section;
    }
    EXPECT_TRUE(printed_.contains(QStringLiteral("long  /p")));
    EXPECT_FALSE(printed_.contains(QStringLiteral("short  /p")));
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
    QVariantMap item = everything;
    for (const char* type : {"class", "mark", "warning", "shortcut"}) {
        item.insert(QStringLiteral("type"), QLatin1String(type));
        for (const QVariant& element : {QVariant(item), QVariant(hostile), QVariant(everything)}) {
            answer_ = everything;
            answer_->insert(QStringLiteral("items"), QVariantList{element});
            for (const char* line : {"tree", "ls", "ls x", "elements x", "classes", "class x",
                                     "types", "type x on", "shortcuts", "project", "version"}) {
                run(QLatin1String(line));
            }
        }
    }
    run(hostile);
    ASSERT_FALSE(printed_.isEmpty());
    const QString text = printed_.join(QLatin1Char('\n'));
    for (const char16_t character : u"\x1B\a\u202E\u200B\u009B\r\xDB40") {
        EXPECT_TRUE(character == 0 || !text.contains(QChar(character)))
            << static_cast<int>(character);
    }
}

TEST_F(CommandsTest, projectAndVersionPrintWhatNavrelSays) {
    answer_ = QVariantMap{{QStringLiteral("project"), QStringLiteral("/p")},
                          {QStringLiteral("version"), QStringLiteral("1.4")}};
    run(QStringLiteral("project"));
    run(QStringLiteral("version"));
    EXPECT_EQ(printed_, (QStringList{QStringLiteral("/p"), QStringLiteral("1.4")}));
}

} // namespace
} // namespace navrel
