#include "desktop/GatherFacts.h"

#include "app/AppDelegate.h"
#include "project/Editor.h"
#include "project/KZDataManager.h"

#include <QFileInfo>

#include <algorithm>

namespace navrel {

namespace {

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

ProgramFacts::Project projectOf(const FactSources& sources) {
    using State = ProgramFacts::Project::State;
    ProgramFacts::Project project;
    project.isChosenByEditor = sources.dataManager.automaticProjectSelection();
    if (sources.dataManager.pbxProjPath().value_or(QString()).isEmpty()) {
        return project;
    }
    const CodeMapSnapshot& snapshot = sources.snapshot;
    project.name = textOf(snapshot.projectName());
    project.reason = textOf(snapshot.reason());
    project.line = snapshot.reasonLine();
    project.files = static_cast<qint64>(snapshot.fileCount());
    project.state = snapshot.state() == MapState::loaded       ? State::loaded
                    : snapshot.state() == MapState::unreadable ? State::unreadable
                                                               : State::loading;
    return project;
}

/// Where the daemon listens unless the environment names another place, which is not looked at.
const QString kUSBDaemonSocket = QStringLiteral("/var/run/usbmuxd");

bool isUSBDaemonAbsent() {
    return !qEnvironmentVariableIsSet("USBMUXD_SOCKET_ADDRESS") &&
           !QFileInfo::exists(kUSBDaemonSocket);
}

QString nameOfUser(qint64 user) {
    return user < 0 ? QString() : QString::number(user);
}

ProgramFacts::Device deviceOf(const DeviceLink& link) {
    using State = ProgramFacts::Device::State;
    ProgramFacts::Device device;
    switch (link.state()) {
    case LinkState::connectedToDevice:
    case LinkState::connectedToSimulator:
        device.state = State::connected;
        device.isSimulator = link.state() == LinkState::connectedToSimulator;
        return device;
    case LinkState::reachingDevice:
        device.state = State::silent;
        return device;
    case LinkState::idle:
        break;
    }
    if (!link.refusedUsers().empty()) {
        device.state = State::refused;
        device.user = nameOfUser(*link.refusedUsers().rbegin());
    } else if (isUSBDaemonAbsent()) {
        device.state = State::noDaemon;
    }
    return device;
}

ProgramFacts::Editor editorOf(const FactSources& sources) {
    using State = ProgramFacts::Editor::State;
    ProgramFacts::Editor facts;
    facts.name = sources.editor.name();
    if (sources.editor.position() || !facts.name.isEmpty()) {
        facts.state = State::follows;
    } else if (sources.isEditorFollowed || sources.dataManager.automaticProjectSelection()) {
        facts.state = State::none;
    }
    return facts;
}

ProgramFacts::Browsers browsersOf(const FactSources& sources) {
    using Reach = ProgramFacts::Browsers::Reach;
    using Mode = AccessSettings::Mode;
    ProgramFacts::Browsers browsers;
    browsers.reach = sources.settings.mode == Mode::off       ? Reach::nobody
                     : sources.settings.mode == Mode::machine ? Reach::machine
                                                              : Reach::network;
    browsers.isPlain = sources.settings.plainHTTP;
    browsers.problem = QString::fromStdString(sources.access.problem);
    if (!sources.access.addresses.empty()) {
        browsers.address = QString::fromStdString(sources.access.addresses.front());
    }
    browsers.paired = static_cast<int>(sources.devices.size());
    browsers.connected =
        static_cast<int>(std::count_if(sources.devices.begin(), sources.devices.end(),
                                       [](const PairedDevice& each) { return each.connected; }));
    return browsers;
}

ProgramFacts::CodeMap codeMapOf(const CodeMapSnapshot& snapshot) {
    using State = ProgramFacts::CodeMap::State;
    return {snapshot.state() == MapState::loaded    ? State::ready
            : snapshot.state() == MapState::loading ? State::reading
                                                    : State::none,
            static_cast<qint64>(snapshot.fileCount()), static_cast<qint64>(snapshot.symbolCount())};
}

std::string nameOf(StateSentence::Level level) {
    switch (level) {
    case StateSentence::Level::good:
        return "good";
    case StateSentence::Level::idle:
        return "idle";
    case StateSentence::Level::warning:
        return "warning";
    case StateSentence::Level::error:
        return "error";
    }
    return "good";
}

ProgramState::Device stateOf(ProgramFacts::Device::State device) {
    using State = ProgramFacts::Device::State;
    switch (device) {
    case State::noDaemon:
        return ProgramState::Device::noDaemon;
    case State::silent:
        return ProgramState::Device::attached;
    case State::connected:
        return ProgramState::Device::connected;
    case State::refused:
        return ProgramState::Device::refused;
    case State::absent:
        break;
    }
    return ProgramState::Device::absent;
}

ProgramState::Editor stateOf(ProgramFacts::Editor::State editor) {
    using State = ProgramFacts::Editor::State;
    if (editor == State::none || editor == State::notAsked) {
        return ProgramState::Editor::none;
    }
    return editor == State::follows ? ProgramState::Editor::follows
                                    : ProgramState::Editor::answersNot;
}

} // namespace

ProgramFacts gatherFacts(const FactSources& sources) {
    ProgramFacts facts;
    facts.project = projectOf(sources);
    facts.device = deviceOf(sources.delegate.deviceLink());
    facts.editor = editorOf(sources);
    facts.browsers = browsersOf(sources);
    facts.codeMap = codeMapOf(sources.snapshot);
    facts.update = sources.delegate.update();
    return facts;
}

ProgramState programStateOf(const ProgramFacts& facts) {
    ProgramState state;
    state.device = stateOf(facts.device.state);
    state.editor = stateOf(facts.editor.state);
    state.editorName = facts.editor.name.toStdString();
    for (const StateSentence& sentence : stateSentences(facts)) {
        state.sentences.push_back({titleOf(sentence.part).toStdString(), nameOf(sentence.level),
                                   sentence.text.toStdString(), sentence.hint.toStdString()});
        if (sentence.part == StateSentence::Part::project &&
            facts.project.state == ProgramFacts::Project::State::none) {
            state.projectReason = (sentence.text + u' ' + sentence.hint).toStdString();
        }
        if (sentence.part == StateSentence::Part::device) {
            state.deviceReason = sentence.text.toStdString();
        }
    }
    return state;
}

} // namespace navrel
