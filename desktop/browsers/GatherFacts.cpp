#include "desktop/browsers/GatherFacts.h"

#include "app/AppDelegate.h"
#include "app/EditorFacts.h"
#include "project/Editor.h"
#include "project/KZDataManager.h"
#include "support/core/MainThread.h"

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
    const bool isLoading = snapshot.state() == MapState::loading;
    project.files = static_cast<qint64>(isLoading ? sources.filesMapped : snapshot.fileCount());
    project.state = snapshot.state() == MapState::loaded       ? State::loaded
                    : snapshot.state() == MapState::unreadable ? State::unreadable
                                                               : State::loading;
    return project;
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

ProgramFacts::Browsers browserFacts(const AccessSettings& settings, const AccessStatus& access,
                                    const std::vector<PairedDevice>& devices) {
    using Reach = ProgramFacts::Browsers::Reach;
    using Mode = AccessSettings::Mode;
    ProgramFacts::Browsers browsers;
    browsers.reach = settings.mode == Mode::off       ? Reach::nobody
                     : settings.mode == Mode::machine ? Reach::machine
                                                      : Reach::network;
    browsers.isPlain = settings.plainHTTP;
    browsers.problem = QString::fromStdString(access.problem);
    if (!access.addresses.empty()) {
        browsers.address = QString::fromStdString(access.addresses.front());
    }
    browsers.paired = static_cast<int>(devices.size());
    browsers.connected = static_cast<int>(std::count_if(
        devices.begin(), devices.end(), [](const PairedDevice& each) { return each.connected; }));
    return browsers;
}

ProgramFacts gatherFacts(const FactSources& sources) {
    NAVREL_ASSERT_MAIN_THREAD();
    ProgramFacts facts;
    facts.project = projectOf(sources);
    sources.delegate.addFacts(facts);
    facts.editor = editorFacts(sources.editor, sources.isEditorFollowed ||
                                                   sources.dataManager.automaticProjectSelection());
    facts.browsers = browserFacts(sources.settings, sources.access, sources.devices);
    facts.codeMap = codeMapOf(sources.snapshot);
    facts.codeMap.isWatched = sources.isMapWatching;
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
