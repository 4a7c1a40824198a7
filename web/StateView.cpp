#include "web/StateView.h"

#include "codemap/CodeMapViews.h"

#include <boost/json.hpp>

namespace navrel {

namespace {

namespace json = boost::json;

std::string_view nameOf(MapState state) {
    switch (state) {
    case MapState::none:
        return "none";
    case MapState::loading:
        return "loading";
    case MapState::loaded:
        return "loaded";
    case MapState::unreadable:
        return "unreadable";
    }
    return "none";
}

std::string_view nameOf(ProgramState::Editor editor) {
    switch (editor) {
    case ProgramState::Editor::none:
        return "none";
    case ProgramState::Editor::follows:
        return "follows";
    case ProgramState::Editor::answersNot:
        return "answersNot";
    }
    return "none";
}

std::string_view nameOf(ProgramState::Device device) {
    switch (device) {
    case ProgramState::Device::absent:
        return "absent";
    case ProgramState::Device::attached:
        return "attached";
    case ProgramState::Device::connected:
        return "connected";
    case ProgramState::Device::noDaemon:
        return "noDaemon";
    case ProgramState::Device::refused:
        return "refused";
    }
    return "absent";
}

std::string_view nameOf(ProgramState::Message::Level level) {
    switch (level) {
    case ProgramState::Message::Level::info:
        return "info";
    case ProgramState::Message::Level::warning:
        return "warning";
    case ProgramState::Message::Level::error:
        return "error";
    }
    return "info";
}

void addText(json::object& object, json::string_view key, std::string_view text) {
    if (!text.empty()) {
        object[key] = text;
    }
}

json::object projectOf(const StateParts& parts) {
    const CodeMapSnapshot& snapshot = parts.snapshot;
    json::object project = {{"state", nameOf(snapshot.state())}};
    addText(project, "name", snapshot.projectName());
    if (snapshot.state() == MapState::loaded) {
        project["files"] = snapshot.fileCount();
        project["symbols"] = snapshot.symbolCount();
    }
    if (snapshot.reasonLine() > 0) {
        project["line"] = snapshot.reasonLine();
    }
    addText(project, "reason",
            snapshot.reason().empty() ? std::string_view(parts.program.projectReason)
                                      : snapshot.reason());
    return project;
}

const MapNode* activeNode(const CodeMapSnapshot& snapshot, const ActivePlace& active) {
    return active.path.empty() ? nullptr : snapshot.fileAtPath(active.path);
}

json::value activeReference(const CodeMapSnapshot& snapshot, const ActivePlace& active) {
    const MapNode* const file = activeNode(snapshot, active);
    return file == nullptr ? json::value(nullptr) : json::value(fileReference(*file, active.line));
}

json::object editorOf(const StateParts& parts) {
    json::object editor = {{"state", nameOf(parts.program.editor)}};
    addText(editor, "name", parts.program.editorName);
    json::value active = activeReference(parts.snapshot, parts.active);
    if (!active.is_null()) {
        editor["active"] = std::move(active);
    }
    return editor;
}

json::object deviceOf(const ProgramState& program) {
    json::object device = {{"state", nameOf(program.device)}};
    addText(device, "reason", program.deviceReason);
    return device;
}

json::object browsersOf(const StateParts& parts) {
    json::object browsers = {{"mode", nameOf(parts.access.mode)},
                             {"addresses", json::value_from(parts.access.addresses)},
                             {"devices", parts.devices}};
    if (parts.readOnly) {
        browsers["readOnly"] = true;
    }
    return browsers;
}

json::array messagesOf(const StateParts& parts) {
    json::array messages;
    for (const ProgramState::Message& message : parts.program.messages) {
        json::object object = {{"level", nameOf(message.level)}, {"text", message.text}};
        addText(object, "hint", message.hint);
        messages.push_back(std::move(object));
    }
    if (!parts.access.problem.empty()) {
        messages.push_back({{"level", "warning"}, {"text", parts.access.problem}});
    }
    return messages;
}

json::array sentencesOf(const ProgramState& program) {
    json::array sentences;
    for (const ProgramState::Sentence& sentence : program.sentences) {
        json::object object = {
            {"part", sentence.part}, {"level", sentence.level}, {"text", sentence.text}};
        addText(object, "hint", sentence.hint);
        sentences.push_back(std::move(object));
    }
    return sentences;
}

} // namespace

json::object stateView(const StateParts& parts) {
    return {{"program", parts.programName},
            {"version", parts.version},
            {"revision", parts.snapshot.revision()},
            {"project", projectOf(parts)},
            {"editor", editorOf(parts)},
            {"device", deviceOf(parts.program)},
            {"browsers", browsersOf(parts)},
            {"messages", messagesOf(parts)},
            {"sentences", sentencesOf(parts.program)}};
}

json::object activeView(const CodeMapSnapshot& snapshot, const ActivePlace& active) {
    json::object view = {{"file", activeReference(snapshot, active)}};
    const MapNode* const file = activeNode(snapshot, active);
    if (file == nullptr || file->outline == nullptr || active.line == 0) {
        return view;
    }
    const Outline& outline = *file->outline;
    const std::size_t index = outline.symbolAtLine(active.line);
    if (index < outline.symbols().size()) {
        const Symbol& symbol = outline.symbols()[index];
        view["symbol"] = {{"name", outline.nameOf(symbol)}, {"line", symbol.line}};
    }
    return view;
}

json::object helloView(const CodeMapSnapshot& snapshot, const ActivePlace& active) {
    return {{"revision", snapshot.revision()}, {"active", activeReference(snapshot, active)}};
}

json::object openedView(std::uint64_t request, const OpenOutcome& outcome) {
    json::object view = {{"request", request}, {"outcome", outcome.opened ? "opened" : "refused"}};
    addText(view, "editor", outcome.editor);
    addText(view, "reason", outcome.reason);
    addText(view, "hint", outcome.hint);
    return view;
}

} // namespace navrel
