// Sessions at a terminal as users see them, held against files in transcripts/. With
// NAVREL_UPDATE_TRANSCRIPTS=1 in the environment the files are written again.

#include "codemap/MapBuilder.h"
#include "support/process/ToolRunner.h"
#include "tests/web/ServedSite.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStringList>

#include <cstdlib>
#include <map>
#include <ostream>

namespace navrel {
namespace {

/// One session: the terminal that it runs in, and what is typed.
struct Script {
    const char* name;
    int columns;
    const char* background; ///< COLORFGBG
    const char* locale;
    QStringList options;
    QStringList lines;
};

void PrintTo(const Script& script, std::ostream* stream) {
    *stream << script.name;
}

constexpr int kRows = 100;

QStringList words(const char* text) {
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

QStringList lines(std::initializer_list<const char*> texts) {
    QStringList result;
    for (const char* text : texts) {
        result.append(QString::fromUtf8(text));
    }
    return result;
}

std::vector<Script> scripts() {
    const QStringList tour = lines({"ls", "find tide", "outline TideTable.swift", "classes"});
    const QStringList faults =
        lines({"tre", "outline", "outline nope", "open nope:3", "outline Tide", "class Foo",
               "hide xib", "open TideTable.swift:nope", "forget 9"});
    const char* const kDark = "15;0";
    const char* const kLight = "0;15";
    const char* const kUTF8 = "C.UTF-8";
    return {
        {"help-80", 80, kDark, kUTF8, {}, lines({"help", "? open", "HELP dance"})},
        {"help-200", 200, kDark, kUTF8, {}, lines({"help"})},
        {"tour-dark-80", 80, kDark, kUTF8, {}, tour},
        {"tour-light-80", 80, kLight, kUTF8, {}, tour},
        {"tour-dark-200", 200, kDark, kUTF8, {}, tour},
        {"tour-light-200", 200, kLight, kUTF8, {}, tour},
        {"tour-c-locale", 80, kDark, "C", {}, lines({"tree", "notes", "state"})},
        {"tour-plain", 80, kDark, kUTF8, words("--plain"),
         lines({"tree", "outline TideTable.swift"})},
        {"faults-dark", 80, kDark, kUTF8, {}, faults},
        {"faults-plain", 80, kDark, kUTF8, words("--plain"), faults},
        {"newcomer-80",
         80,
         kLight,
         kUTF8,
         {},
         lines({"find class with the next tide", "find next", "edit TideTable.swift 12",
                "outline TideTable", "types Tide", "hide swifts", "device", "state dev",
                "state nothing", "back now"})},
        {"state-80", 80, kLight, kUTF8, {}, lines({"state", "devices", "version", "project"})},
        {"open-back",
         80,
         kDark,
         kUTF8,
         {},
         lines({"open TideTable.swift", "open tidetable:12", "back", "filter", "hide m", "filter",
                "changes"})},
    };
}

QString folderOfTranscripts() {
    return QStringLiteral(NAVREL_TRANSCRIPTS);
}

/// How characters look. tmux's own sequences differ from version to version.
class Style {
public:
    /// Takes the numbers of one sequence "ESC [ … m".
    void change(const QStringList& numbers) {
        for (const QString& text : numbers) {
            const int number = text.toInt();
            if (number == 0) {
                parts_.clear();
            } else if (number == kColour + kUsual || number == kBackground + kUsual) {
                parts_.erase(number - kUsual);
            } else {
                parts_[kindOf(number)] = number;
            }
        }
    }
    QString sequence() const {
        QString result = QStringLiteral("\x1B[0");
        for (const auto& part : parts_) {
            result += u';' + QString::number(part.second);
        }
        return result + u'm';
    }
    bool operator==(const Style&) const = default;

private:
    static constexpr int kColour = 30;
    static constexpr int kBackground = 40;
    static constexpr int kUsual = 9;
    static constexpr int kBrightColour = 90;
    static constexpr int kBrightBackground = 100;

    static int kindOf(int number) {
        if (number < kColour) {
            return number;
        }
        const bool isBackground =
            number >= kBrightBackground || (number >= kBackground && number < kBrightColour);
        return isBackground ? kBackground : kColour;
    }

    std::map<int, int> parts_; ///< by kind: an attribute, the colour, the background
};

/// Lines in which each sequence says all that holds from there on, and none holds beyond its line.
QString plainlyStyled(const QString& captured) {
    static const QRegularExpression sequence(QStringLiteral("\x1B\\[([0-9;]*)m"));
    QStringList result;
    Style style;
    for (const QString& line : captured.split(u'\n')) {
        QString shown;
        Style shownStyle;
        qsizetype at = 0;
        const auto show = [&](qsizetype end) {
            if (end > at && style != shownStyle) {
                shown += style.sequence();
                shownStyle = style;
            }
            shown += QStringView(line).mid(at, end - at);
        };
        for (const QRegularExpressionMatch& match : sequence.globalMatch(line)) {
            show(match.capturedStart());
            at = match.capturedEnd();
            style.change(match.captured(1).split(u';'));
        }
        show(line.size());
        result.append(shownStyle == Style() ? shown : shown + Style().sequence());
    }
    return result.join(u'\n');
}

QString withoutBlankEnds(const QString& text) {
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        while (line.endsWith(u' ')) {
            line.chop(1);
        }
    }
    while (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines.join(u'\n') + u'\n';
}

/// A terminal with the companion in it.
class CompanionTerminal {
public:
    CompanionTerminal(const QString& folder, const Script& script)
        : socket_(folder + QStringLiteral("/tmux")) {
        environment_ = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"NO_COLOR", "TMUX", "LANG", "LC_CTYPE"}) {
            environment_.remove(QLatin1String(name));
        }
        environment_.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder);
        environment_.insert(QStringLiteral("XDG_STATE_HOME"), folder);
        environment_.insert(QStringLiteral("HOME"), folder);
        environment_.insert(QStringLiteral("PAGER"), QStringLiteral("cat"));
        environment_.insert(QStringLiteral("COLORFGBG"), QLatin1String(script.background));
        environment_.insert(QStringLiteral("LC_ALL"), QLatin1String(script.locale));
        run(QStringList{QStringLiteral("-u"), QStringLiteral("new-session"), QStringLiteral("-d"),
                        QStringLiteral("-x"), QString::number(script.columns), QStringLiteral("-y"),
                        QString::number(kRows), QStringLiteral(NAVREL_COMPANION)} +
            script.options);
    }
    ~CompanionTerminal() { run({QStringLiteral("kill-server")}); }
    CompanionTerminal(const CompanionTerminal&) = delete;
    CompanionTerminal& operator=(const CompanionTerminal&) = delete;

    void type(const QString& line) const {
        run({QStringLiteral("send-keys"), QStringLiteral("-l"), line});
        run({QStringLiteral("send-keys"), QStringLiteral("Enter")});
    }

    /// What stands on the screen, without blanks at the ends: with its colours, or the text alone.
    QString screen() const {
        return withoutBlankEnds(plainlyStyled(captured({QStringLiteral("-e")})));
    }
    QString text() const { return withoutBlankEnds(captured({})); }

    /// Whether as many prompts are there, and nothing behind the last one.
    bool waitForPrompts(const QString& prompt, int count) const {
        return waitUntil([&] {
            const QStringList all = text().split(u'\n', Qt::SkipEmptyParts);
            int prompts = 0;
            for (const QString& line : all) {
                prompts += line == prompt || line.startsWith(prompt + u' ') ? 1 : 0;
            }
            return prompts == count && !all.isEmpty() && all.last() == prompt;
        });
    }

private:
    QString captured(const QStringList& options) const {
        return QString::fromUtf8(
            run(QStringList{QStringLiteral("capture-pane"), QStringLiteral("-p")} + options));
    }

    QByteArray run(const QStringList& arguments) const {
        QProcess tmux;
        tmux.setProcessEnvironment(environment_);
        tmux.start(QStringLiteral("tmux"),
                   QStringList{QStringLiteral("-f"), QStringLiteral("/dev/null"),
                               QStringLiteral("-S"), socket_} +
                       arguments);
        tmux.waitForFinished(-1);
        return tmux.readAllStandardOutput();
    }

    const QString socket_;
    QProcessEnvironment environment_;
};

std::vector<ProgramState::Sentence> sampleSentences() {
    return {{"Project", "good", "Tidewatch is loaded: 24 files.", ""},
            {"Device", "warning", "A device is attached, but no app listens on its port 2345.",
             "Open the companion app on the device and keep it in front."},
            {"Editor", "good", "Neovim answers.", ""},
            {"Browsers", "idle", "No browser can reach Navrel.",
             "Choose \"Phone or Tablet…\" in Navrel's menu to let one in."}};
}

class Transcripts : public ServedSite, public ::testing::WithParamInterface<Script> {
protected:
    Transcripts() {
        const std::string bundle = NAVREL_SAMPLES "/Tidewatch/Tidewatch.xcodeproj";
        map.publish(CodeMapSnapshot(*MapBuilder(bundle).build(1).snapshot), {});
        settings.socketPath = path("nl.kelvane.Navrel.sock");
        settings.mode = AccessSettings::Mode::off;
        start();
        ProgramState state;
        state.sentences = sampleSentences();
        service_->publishState(std::move(state));
    }

    QString transcriptOf(const Script& script) const {
        const CompanionTerminal terminal(folder_.path(), script);
        const bool isPlain = script.options.contains(QStringLiteral("--plain"));
        const QString prompt = isPlain ? QStringLiteral("Navrel:") : QStringLiteral(">");
        int prompts = 1;
        EXPECT_TRUE(terminal.waitForPrompts(prompt, prompts)) << qUtf8Printable(terminal.screen());
        for (const QString& line : script.lines) {
            terminal.type(line);
            if (!terminal.waitForPrompts(prompt, ++prompts)) {
                ADD_FAILURE() << qUtf8Printable(line) << qUtf8Printable(terminal.screen());
                break;
            }
        }
        return terminal.screen();
    }
};

TEST_P(Transcripts, areAsTheyWere) {
    const Script script = GetParam();
    if (!findTool(QStringLiteral("tmux"))) {
        GTEST_SKIP() << "there is no tmux";
    }
    const QString shown = transcriptOf(script);
    QFile file(folderOfTranscripts() + u'/' + QLatin1String(script.name) + QStringLiteral(".txt"));
    if (std::getenv("NAVREL_UPDATE_TRANSCRIPTS") != nullptr) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(shown.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qUtf8Printable(file.fileName());
    EXPECT_EQ(shown.toStdString(), file.readAll().toStdString());
}

INSTANTIATE_TEST_SUITE_P(
    Sessions, Transcripts, ::testing::ValuesIn(scripts()), [](const auto& test) {
        return QString::fromUtf8(test.param.name).replace(u'-', u'_').toStdString();
    });

} // namespace
} // namespace navrel
