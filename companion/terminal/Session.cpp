#include "companion/terminal/Session.h"

#include "companion/terminal/Doctor.h"
#include "companion/terminal/EditedLines.h"
#include "companion/terminal/Follow.h"
#include "companion/terminal/LineInput.h"
#include "companion/terminal/Names.h"
#include "companion/terminal/OwnerSource.h"
#include "companion/terminal/Pager.h"
#include "companion/terminal/Theme.h"
#include "companion/terminal/ViewAccess.h"
#include "companion/terminal/WireSource.h"
#include "protocol/CompanionProtocol.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Steady = std::chrono::steady_clock;

constexpr seconds kSessionWait{60};
/// Navrel looks for a device once a second.
constexpr seconds kDeviceCommandWait{3};
/// How long the first pass over a large project may take before it counts as no project.
constexpr seconds kProjectWait{10};
/// How often Navrel's socket is looked for, and a project that is being read.
constexpr milliseconds kLookAgainAfter{500};
/// A terminal answers in a moment, over a slow line in a blink.
constexpr milliseconds kBackgroundAtMost{150};
/// Waiting shorter than that needs no word.
constexpr seconds kSilentWait{1};

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool isDumb() {
    const char* const terminal = std::getenv("TERM");
    return terminal == nullptr || std::string_view(terminal) == "dumb";
}

TerminalText textFor(const Arguments& arguments, const TerminalTraits& traits) {
    if (arguments.isPlain) {
        return TerminalText(TerminalText::Style::spoken);
    }
    const bool isColoured = arguments.colour == Arguments::Colour::always ||
                            (arguments.colour == Arguments::Colour::automatic &&
                             traits.isTerminal && !isSet("NO_COLOR") && !isDumb());
    if (!isColoured || arguments.isJSON) {
        return TerminalText(TerminalText::Style::plain);
    }
    auto background = backgroundOfVariable(isSet("COLORFGBG") ? std::getenv("COLORFGBG") : "");
    if (background == TerminalText::Background::unknown && traits.isTerminal && !isDumb() &&
        ::isatty(STDIN_FILENO) != 0) {
        background = askForBackground(STDIN_FILENO, kBackgroundAtMost);
    }
    return TerminalText(TerminalText::Style::coloured, background);
}

void write(std::FILE* file, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    std::fflush(file);
}

seconds passedSince(Steady::time_point start) {
    return std::chrono::duration_cast<seconds>(Steady::now() - start);
}

} // namespace

Session::Session(Arguments arguments, QString version)
    : arguments_(std::move(arguments)), version_(std::move(version)), traits_(traitsOfOutput()),
      text_(textFor(arguments_, traits_)), owner_(ownerSocketPath()) {
    wire_.didRefuse = [this](const QString& sentence) { complain(sentence); };
}

int Session::run() {
    CommandResult result = CommandResult::done;
    if (arguments_.wantsCompletion) {
        result = printCompletions();
    } else if (!arguments_.command.isEmpty()) {
        result = runOneCommand();
    } else if (!connect(arguments_.wait.value_or(kSessionWait))) {
        result = CommandResult::noNavrel;
    } else if (::isatty(STDIN_FILENO) != 0 && traits_.isTerminal) {
        result = runPrompt();
    } else {
        result = runPlainInput();
    }
    return static_cast<int>(result);
}

CommandResult Session::runOneCommand() {
    const QString name = arguments_.command.section(u' ', 0, 0);
    const CommandInfo* const command = commandNamed(name);
    const bool needsNavrel = command != nullptr && command->id != CommandID::help &&
                             command->id != CommandID::doctor && command->id != CommandID::quit;
    if (needsNavrel) {
        const seconds usual = command->needsCodeMap ? seconds(0) : kDeviceCommandWait;
        if (!connect(arguments_.wait.value_or(usual))) {
            return CommandResult::noNavrel;
        }
    } else if (!arguments_.isDevice) {
        connectToOwner();
    }
    if (source_ == nullptr) {
        source_ = std::make_unique<OwnerSource>(owner_);
    }
    commands_ = makeCommands();
    return commands_->run(arguments_.command);
}

/// For shells, which ask at every Tab: nothing is waited for.
CommandResult Session::printCompletions() {
    if (!connectToOwner()) {
        source_ = std::make_unique<OwnerSource>(owner_); // commands can be completed all the same
    }
    for (const QString& candidate :
         completionOf(arguments_.command, completionWords()).candidates) {
        write(stdout, TerminalText::harmless(candidate) + u'\n');
    }
    return CommandResult::done;
}

template <typename Lines>
CommandResult Session::runLines(Lines& lines) {
    while (const auto line = lines.next()) {
        if (Commands::isQuit(*line)) {
            return CommandResult::done;
        }
        if (!isServed()) {
            return CommandResult::noNavrel;
        }
        commands_->run(*line);
    }
    return CommandResult::done;
}

CommandResult Session::runPrompt() {
    commands_ = makeCommands();
    greet();
    EditedLines lines({arguments_.isPlain ? QStringLiteral("Navrel: ") : QStringLiteral("> "),
                       historyPath(), completionWords()});
    return runLines(lines);
}

CommandResult Session::runPlainInput() {
    waitForProject();
    commands_ = makeCommands();
    commands_->run(QStringLiteral("overview"));
    if (::isatty(STDIN_FILENO) != 0) {
        return CommandResult::done; // the keys belong to what reads the output
    }
    LineInput input(STDIN_FILENO, [this](int descriptor) {
        while (!wire_.turn(std::chrono::minutes(10), descriptor)) {
        }
    });
    return runLines(input);
}

// Finding a Navrel.

bool Session::connect(seconds atMost) {
    const bool isOwner = !arguments_.isDevice && connectToOwner();
    if (!isOwner && (atMost == seconds(0) || !listenAsDevice() || !waitForConnection(atMost))) {
        refuseWithoutNavrel(atMost);
        return false;
    }
    return true;
}

bool Session::connectToOwner() {
    if (ownerSocketPath().empty() || !owner_.ask("GET", "/api/state")) {
        return false;
    }
    source_ = std::make_unique<OwnerSource>(owner_);
    wire_.stop(); // a device may be connected
    isListening_ = false;
    return true;
}

/// Only a device must: otherwise Navrel's own socket may still come.
bool Session::listenAsDevice() {
    const auto error = wire_.listen(kCompanionPort);
    isListening_ = !error;
    if (error && arguments_.isDevice) {
        complain(QStringLiteral("cannot listen on 127.0.0.1:%1: %2")
                     .arg(kCompanionPort)
                     .arg(error->localizedDescription().value_or(error->description())));
    }
    return isListening_ || !arguments_.isDevice;
}

bool Session::waitForConnection(seconds atMost) {
    const auto start = Steady::now();
    while (Steady::now() - start < atMost) {
        if (wire_.waitUntilServed(kLookAgainAfter)) {
            source_ =
                std::make_unique<WireSource>([this](quint32 type, const QVariantMap& request) {
                    return wire_.ask(type, request);
                });
            endWaiting();
            return true;
        }
        if (!arguments_.isDevice && connectToOwner()) {
            endWaiting();
            return true;
        }
        sayWaiting(Wait::navrel, passedSince(start), atMost);
    }
    endWaiting();
    return false;
}

CommandResult Session::refuseWithoutNavrel(seconds waited) {
    const QString time = waited > seconds(0)
                             ? QStringLiteral(" No Navrel came within %1 s.").arg(waited.count())
                             : QString();
    if (arguments_.isJSON) {
        write(stdout, QStringLiteral("{\"error\":\"No Navrel of yours is running.\",\"hint\":"
                                     "\"Start it with: navrel\"}\n"));
    }
    complain(QStringLiteral("No Navrel of yours is running.%1\nStart it with: navrel. "
                            "\"navrel-companion doctor\" says more.")
                 .arg(time));
    return CommandResult::noNavrel;
}

bool Session::isServed() {
    while (isListening_ && wire_.isConnected() && wire_.turn(milliseconds(0))) {
    }
    if (!isListening_ || wire_.isConnected()) {
        return true; // a command says itself when Navrel's socket does not answer
    }
    complain(QStringLiteral("Navrel is gone; waiting for it to come back."));
    const seconds atMost = arguments_.wait.value_or(kSessionWait);
    if (!waitForConnection(atMost)) {
        refuseWithoutNavrel(atMost);
        return false;
    }
    commands_ = makeCommands();
    return true;
}

/// Navrel reads a project for the first time a second after its start: what it shows before is
/// empty.
void Session::waitForProject() {
    const auto start = Steady::now();
    while (!source_->tree().view.contains("root") && Steady::now() - start < kProjectWait) {
        wire_.turn(kLookAgainAfter);
        sayWaiting(Wait::project, passedSince(start), kProjectWait);
    }
    endWaiting();
}

// Words.

/// One line that changes in place at a terminal; elsewhere it is written once.
void Session::sayWaiting(Wait wait, seconds passed, seconds atMost) {
    const bool isTerminal = ::isatty(STDERR_FILENO) != 0;
    if (passed < kSilentWait || (isWaitingSaid_ && (!isTerminal || arguments_.isPlain))) {
        return;
    }
    const QString text = waitingText(wait, passed, atMost, arguments_.isDevice);
    if (isTerminal && !arguments_.isPlain && traits_.width > 1) {
        write(stderr, QStringLiteral("\r\x1B[K") + text.left(traits_.width - 1));
    } else {
        write(stderr, text + u'\n');
    }
    isWaitingSaid_ = true;
}

void Session::endWaiting() {
    if (std::exchange(isWaitingSaid_, false) && ::isatty(STDERR_FILENO) != 0 &&
        !arguments_.isPlain) {
        write(stderr, QStringLiteral("\r\x1B[K"));
    }
}

void Session::greet() {
    const CodeAnswer state = source_->hasCodeMap() ? source_->state() : CodeAnswer();
    for (const boost::json::value& sentence : arrayAt(state.view, "sentences")) {
        const boost::json::object& object = objectOf(sentence);
        if (bytesAt(object, "part") == "Project") {
            show(textAt(object, "text") + u' ' + textAt(object, "hint") + u'\n');
        }
    }
    if (!source_->hasCodeMap()) {
        commands_->run(QStringLiteral("overview"));
    }
    show(QStringLiteral("\"help\" lists the commands; Ctrl-D ends.\n"));
}

void Session::show(const QString& text) const {
    const QString shown = arguments_.isJSON ? text : fitted(text, traits_);
    const bool isPaged = !arguments_.isJSON && !arguments_.isPlain && !isDumb() &&
                         ::isatty(STDIN_FILENO) != 0 && needsPager(shown, traits_);
    if (!isPaged || !showInPager(shown.toUtf8())) {
        write(stdout, shown);
    }
}

void Session::complain(const QString& text) const {
    const bool isPrompt = arguments_.command.isEmpty() && traits_.isTerminal;
    const QString shown = isPrompt ? text : QStringLiteral("navrel-companion: ") + text;
    write(stderr, fitted(shown, traits_) + u'\n');
}

std::unique_ptr<Commands> Session::makeCommands() {
    Commands::World world = {*source_, [this](const QString& text) { show(text); },
                             [this](const QString& text) { complain(text); }, text_,
                             arguments_.isJSON};
    world.follow = [this] { return follow(); };
    world.doctor = [this] { return doctor(); };
    return std::make_unique<Commands>(std::move(world));
}

CommandResult Session::follow() {
    const bool redraws = traits_.isTerminal && !arguments_.isPlain && !isDumb();
    Follow view({owner_, *source_, text_, traits_, redraws,
                 [this](const QString& text) { write(stdout, fitted(text, traits_)); }});
    const CommandResult result = view.run(STDIN_FILENO);
    if (result == CommandResult::done && arguments_.command.isEmpty()) {
        LineInput(STDIN_FILENO).next(); // the Enter that ended it
    }
    if (result == CommandResult::noNavrel) {
        complain(QStringLiteral("Navrel is gone.\nStart it with: navrel"));
    }
    return result;
}

QString Session::doctor() {
    DoctorFacts facts = doctorFacts(version_);
    facts.traits = traits_;
    const bool hasState = source_ != nullptr && source_->hasCodeMap();
    return doctorText(facts, hasState ? source_.get() : nullptr, text_);
}

// Completion.

namespace {

/// Names; paths of those that share their name with others.
QStringList wordsFor(const std::vector<NodeName>& nodes, bool isGroup) {
    std::map<std::string, int> count;
    for (const NodeName& node : nodes) {
        ++count[node.name];
    }
    QStringList words;
    for (const NodeName& node : nodes) {
        if (node.isGroup == isGroup) {
            words.append(QString::fromStdString(
                count[node.name] > 1 && !node.path.empty() ? node.path : node.name));
        }
    }
    return words;
}

QStringList textsOf(const CodeAnswer& answer, const char* key) {
    QStringList words;
    for (const boost::json::value& item : arrayAt(answer.view, "items")) {
        words.append(QString::fromStdString(bytesAt(objectOf(item), key)));
    }
    return words;
}

} // namespace

CompletionWords Session::completionWords() {
    CompletionWords words;
    words.files = [this] { return wordsFor(nodesOf(source_->tree().view), false); };
    words.groups = [this] { return wordsFor(nodesOf(source_->tree().view), true); };
    words.types = [this] { return textsOf(source_->types(), "name"); };
    words.extensions = [this] { return textsOf(source_->fileTypes(), "extension"); };
    words.symbols = [this](const QString& file) {
        QStringList symbols;
        const auto found = nodesNamed(nodesOf(source_->tree().view), file.toStdString(), {});
        if (found.size() == 1) {
            for (const SymbolName& symbol : symbolsOf(source_->outline(found.front().id).view)) {
                symbols.append(QString::fromStdString(symbol.name));
            }
        }
        return symbols;
    };
    return words;
}

} // namespace navrel
