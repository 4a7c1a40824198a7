#include "app/StateSentences.h"

#include "protocol/CompanionProtocol.h"

namespace navrel {

namespace {

using Part = StateSentence::Part;
using Level = StateSentence::Level;

QString counted(qint64 count, const QString& thing) {
    return count == 1 ? QStringLiteral("1 %1").arg(thing)
                      : QStringLiteral("%1 %2s").arg(count).arg(thing);
}

QString nameOr(const QString& name, const QString& fallback) {
    return name.isEmpty() ? fallback : name;
}

StateSentence unreadableSentence(const ProgramFacts::Project& project) {
    const QString place =
        project.line > 0 ? QStringLiteral(" at line %1").arg(project.line) : QString();
    const QString reason =
        project.reason.isEmpty() ? QStringLiteral(".") : QStringLiteral(": ") + project.reason;
    return {Part::project, Level::error,
            QStringLiteral("%1 cannot be read%2%3")
                .arg(nameOr(project.name, QStringLiteral("The project")), place, reason),
            QStringLiteral("Look for a merge conflict or a damaged line in its project.pbxproj; "
                           "Navrel reads it again as soon as it changes.")};
}

StateSentence connectedSentence(const ProgramFacts::Device& device) {
    const QString since =
        device.since.isEmpty() ? QString() : QStringLiteral(" since %1").arg(device.since);
    return {Part::device,
            Level::good,
            device.isSimulator
                ? QStringLiteral("A companion app on this machine is connected%1.").arg(since)
                : QStringLiteral("A device is connected over USB%1.").arg(since),
            {}};
}

StateSentence readySentence(const ProgramFacts::CodeMap& codeMap) {
    const QString extent = QStringLiteral("%1 in %2")
                               .arg(counted(codeMap.symbols, QStringLiteral("symbol")),
                                    counted(codeMap.files, QStringLiteral("file")));
    if (codeMap.isWatched) {
        return {Part::codeMap, Level::good, QStringLiteral("%1 can be searched.").arg(extent), {}};
    }
    return {
        Part::codeMap, Level::idle,
        QStringLiteral("%1 can be searched; Navrel looks for changes once a second.").arg(extent),
        QStringLiteral("The system reports no changes, as when its limit of watched folders is "
                       "used up: fs.inotify.max_user_watches sets it.")};
}

QString reachClause(const ProgramFacts::Browsers& browsers) {
    const QString clause =
        browsers.reach == ProgramFacts::Browsers::Reach::network
            ? QStringLiteral("Paired devices in this network can reach Navrel at %1")
            : QStringLiteral("Paired browsers on this machine can reach Navrel at %1");
    return clause.arg(browsers.address);
}

} // namespace

QString titleOf(Part part) {
    switch (part) {
    case Part::project:
        return QStringLiteral("Project");
    case Part::device:
        return QStringLiteral("Device");
    case Part::editor:
        return QStringLiteral("Editor");
    case Part::browsers:
        return QStringLiteral("Browsers");
    case Part::codeMap:
        return QStringLiteral("Code map");
    case Part::update:
        return QStringLiteral("Updates");
    }
    return {};
}

StateSentence sentenceOf(const ProgramFacts::Project& project) {
    using State = ProgramFacts::Project::State;
    switch (project.state) {
    case State::unreadable:
        return unreadableSentence(project);
    case State::loading:
        return {Part::project,
                Level::good,
                QStringLiteral("Navrel is reading %1: %2 so far.")
                    .arg(nameOr(project.name, QStringLiteral("the project")),
                         counted(project.files, QStringLiteral("file"))),
                {}};
    case State::loaded:
        return {Part::project,
                Level::good,
                QStringLiteral("%1 is loaded: %2.")
                    .arg(nameOr(project.name, QStringLiteral("A project")),
                         counted(project.files, QStringLiteral("file"))),
                {}};
    case State::none:
        break;
    }
    return project.isChosenByEditor
               ? StateSentence{Part::project, Level::warning,
                               QStringLiteral("The editor shows no project."),
                               QStringLiteral("Open a file of an Xcode project in your editor, or "
                                              "choose a project in Navrel's menu.")}
               : StateSentence{Part::project, Level::warning,
                               QStringLiteral("No project is chosen."),
                               QStringLiteral("Choose one in Navrel's menu.")};
}

StateSentence sentenceOf(const ProgramFacts::Device& device) {
    using State = ProgramFacts::Device::State;
    switch (device.state) {
    case State::noDaemon:
        return {Part::device, Level::idle,
                QStringLiteral("No device is found: the USB daemon, usbmuxd, is not running."),
                QStringLiteral("Plug the device in, which starts the daemon; if this sentence "
                               "stays, install the package usbmuxd.")};
    case State::silent:
        return {Part::device, Level::warning,
                QStringLiteral("A device is attached, but no app listens on its port %1.")
                    .arg(kCompanionPort),
                QStringLiteral("Open the companion app on the device and keep it in front.")};
    case State::connected:
        return connectedSentence(device);
    case State::refused:
        return {Part::device, Level::warning,
                QStringLiteral("Port %1 of this machine belongs to another user (%2), who is not "
                               "shown your project.")
                    .arg(kCompanionPort)
                    .arg(nameOr(device.user, QStringLiteral("unknown"))),
                QStringLiteral("Ask that user to end the program that listens there.")};
    case State::absent:
        break;
    }
    return {Part::device, Level::idle, QStringLiteral("No device is attached."),
            QStringLiteral("Plug one in, unlock it, and tap \"Trust\" if it asks.")};
}

StateSentence sentenceOf(const ProgramFacts::Editor& editor) {
    using State = ProgramFacts::Editor::State;
    const QString name = nameOr(editor.name, QStringLiteral("The editor"));
    switch (editor.state) {
    case State::notAsked:
        return {Part::editor, Level::idle,
                QStringLiteral("No editor is asked while no browser or terminal follows it."),
                QStringLiteral("Files are opened in your editor all the same.")};
    case State::follows:
        return {Part::editor, Level::good, QStringLiteral("%1 answers.").arg(name), {}};
    case State::silent:
        return {Part::editor, Level::warning, QStringLiteral("%1 does not answer.").arg(name),
                QStringLiteral("Finish the command or the prompt that it waits in.")};
    case State::stopped:
        return {Part::editor, Level::warning, QStringLiteral("%1 is stopped.").arg(name),
                QStringLiteral("Type fg in the shell that it was started from.")};
    case State::none:
        break;
    }
    return {Part::editor, Level::idle, QStringLiteral("No editor answers."),
            QStringLiteral("Start Neovim, Emacs with its server, or an editor with Navrel's "
                           "plug-in; until then files open in the desktop's application.")};
}

StateSentence sentenceOf(const ProgramFacts::Browsers& browsers) {
    using Reach = ProgramFacts::Browsers::Reach;
    if (!browsers.problem.isEmpty()) {
        return {Part::browsers, Level::warning, browsers.problem,
                QStringLiteral("The window \"Phone or Tablet…\" in Navrel's menu has the "
                               "settings.")};
    }
    if (browsers.reach == Reach::nobody) {
        return {Part::browsers, Level::idle, QStringLiteral("No browser can reach Navrel."),
                QStringLiteral("Choose \"Phone or Tablet…\" in Navrel's menu to let one in.")};
    }
    if (browsers.address.isEmpty()) {
        return {Part::browsers,
                Level::idle,
                QStringLiteral("Navrel does not listen for browsers yet."),
                {}};
    }
    const QString text =
        reachClause(browsers) +
        QStringLiteral(": %1 paired, %2 connected.").arg(browsers.paired).arg(browsers.connected);
    if (browsers.isPlain && browsers.reach == Reach::network) {
        return {Part::browsers, Level::warning, text,
                QStringLiteral("Without encryption, others in the network can read your code: set "
                               "browserPlainHTTP to false.")};
    }
    return {Part::browsers, Level::good, text,
            browsers.paired > 0
                ? QString()
                : QStringLiteral("Pair a device: navrel-companion pair shows the code.")};
}

StateSentence sentenceOf(const ProgramFacts::CodeMap& codeMap) {
    using State = ProgramFacts::CodeMap::State;
    switch (codeMap.state) {
    case State::reading:
        return {Part::codeMap, Level::good, QStringLiteral("Navrel is reading the sources."), {}};
    case State::ready:
        return readySentence(codeMap);
    case State::none:
        break;
    }
    return {Part::codeMap, Level::idle, QStringLiteral("There are no sources to search."), {}};
}

StateSentence sentenceOf(const ProgramFacts::Update& update) {
    using State = ProgramFacts::Update::State;
    switch (update.state) {
    case State::unreachable:
        return {Part::update, Level::idle,
                QStringLiteral("The update server did not answer at start-up."),
                QStringLiteral("Navrel asks it again at its next start.")};
    case State::current:
        return {Part::update, Level::good, QStringLiteral("This is the latest version."), {}};
    case State::other:
        return {Part::update, Level::idle,
                QStringLiteral("Another version is available: %1.").arg(update.version),
                QStringLiteral("Restart Navrel to be offered the download.")};
    case State::off:
        break;
    }
    return {Part::update, Level::idle, QStringLiteral("Navrel asks no server for updates."), {}};
}

std::vector<StateSentence> stateSentences(const ProgramFacts& facts) {
    return {sentenceOf(facts.project),  sentenceOf(facts.device),  sentenceOf(facts.editor),
            sentenceOf(facts.browsers), sentenceOf(facts.codeMap), sentenceOf(facts.update)};
}

} // namespace navrel
