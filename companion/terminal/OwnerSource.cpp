#include "companion/terminal/OwnerSource.h"

#include "companion/terminal/ViewAccess.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <thread>

namespace navrel {

namespace json = boost::json;

namespace {

/// An editor that waits for its user answers sooner than that.
constexpr std::chrono::seconds kOpeningAtMost{30};
constexpr long kFirstRefusal = 300;

constexpr std::chrono::seconds kSwitchingAtMost{5};
constexpr std::chrono::milliseconds kAskAgainAfter{20};

bool hasItem(const json::object& view, const json::object& item) {
    const json::array& items = arrayAt(view, "items");
    return std::find(items.begin(), items.end(), json::value(item)) != items.end();
}

std::string encoded(const std::string& text) {
    return QByteArray::fromStdString(text).toPercentEncoding().toStdString();
}

CodeAnswer noNavrel() {
    return CodeAnswer::failure(CommandResult::noNavrel,
                               QStringLiteral("No Navrel of yours is running."),
                               QStringLiteral("Start it with: navrel"));
}

} // namespace

CodeAnswer OwnerSource::ask(const char* method, const std::string& target,
                            const std::string& body) const {
    const auto answer = link_.ask(method, target, body);
    if (!answer) {
        return noNavrel();
    }
    json::object view = objectIn(answer->body).value_or(json::object());
    if (answer->status >= kFirstRefusal) {
        return CodeAnswer::failure(CommandResult::notFound, textAt(view, "error"),
                                   textAt(view, "hint"));
    }
    return {CommandResult::done, std::move(view), {}, {}};
}

CodeAnswer OwnerSource::project() {
    CodeAnswer answer = state();
    if (answer.isView()) {
        answer.view = json::object(objectAt(answer.view, "project"));
    }
    return answer;
}

CodeAnswer OwnerSource::tree() {
    return ask("GET", "/api/tree");
}

CodeAnswer OwnerSource::outline(const std::string& file) {
    return ask("GET", "/api/files/" + encoded(file) + "/outline");
}

CodeAnswer OwnerSource::types() {
    return ask("GET", "/api/types");
}

CodeAnswer OwnerSource::shortcuts() {
    CodeAnswer answer = notes();
    json::array kept;
    for (const json::value& note : arrayAt(answer.view, "items")) {
        if (bytesAt(objectOf(note), "kind") == "shortcut") {
            kept.push_back(note);
        }
    }
    answer.view["items"] = std::move(kept);
    return answer;
}

CodeAnswer OwnerSource::fileTypes() {
    return ask("GET", "/api/filetypes");
}

CodeAnswer OwnerSource::switchFileType(const std::string& extension, bool allowed) {
    const json::object item = {{"extension", extension}, {"allowed", allowed}};
    const CodeAnswer request =
        ask("POST", "/api/filetypes", json::serialize(json::object{{"items", json::array{item}}}));
    if (!request.isView()) {
        return request;
    }
    // The switch is turned on Navrel's main thread, after the answer.
    const QDeadlineTimer deadline(kSwitchingAtMost);
    CodeAnswer types = fileTypes();
    while (types.isView() && !hasItem(types.view, item) && !deadline.hasExpired()) {
        std::this_thread::sleep_for(kAskAgainAfter);
        types = fileTypes();
    }
    return types;
}

CodeAnswer OwnerSource::open(const std::string& file, const std::string&, std::uint32_t line,
                             std::uint32_t column) {
    json::object request = {{"file", file}};
    if (line > 0) {
        request["line"] = line;
    }
    if (column > 0) {
        request["column"] = column;
    }
    return outcomeOf("/api/open", json::serialize(request));
}

CodeAnswer OwnerSource::back() {
    return outcomeOf("/api/back", "{}");
}

/// Listens before it asks, since the outcome may come at once.
CodeAnswer OwnerSource::outcomeOf(const char* target, const std::string& body) const {
    CodeAnswer request = noNavrel();
    CodeAnswer outcome;
    const auto end = link_.readEvents(
        [&](std::string_view name, std::string_view data) {
            if (name == "hello") {
                request = ask("POST", target, body);
                return request.isView();
            }
            auto event = name == "opened" ? objectIn(data) : std::nullopt;
            if (event && numberAt(*event, "request") == numberAt(request.view, "request")) {
                outcome.view = std::move(*event);
            }
            return outcome.view.empty();
        },
        kOpeningAtMost);
    if (!request.isView()) {
        return request;
    }
    if (end != OwnerLink::End::taken) {
        return CodeAnswer::failure(CommandResult::notFound,
                                   QStringLiteral("The editor did not say how it went."),
                                   QStringLiteral("\"state\" says which editor answers."));
    }
    if (bytesAt(outcome.view, "outcome") != "opened") {
        return CodeAnswer::failure(CommandResult::notFound, textAt(outcome.view, "reason"),
                                   textAt(outcome.view, "hint"));
    }
    return outcome;
}

CodeAnswer OwnerSource::search(const std::string& text) {
    return ask("GET", "/api/search?q=" + encoded(text));
}

CodeAnswer OwnerSource::notes() {
    return ask("GET", "/api/notes");
}

CodeAnswer OwnerSource::changes() {
    return ask("GET", "/api/changes");
}

CodeAnswer OwnerSource::state() {
    return ask("GET", "/api/state");
}

CodeAnswer OwnerSource::pairing() {
    return ask("POST", "/api/pairing");
}

CodeAnswer OwnerSource::devices() {
    return ask("GET", "/api/devices");
}

CodeAnswer OwnerSource::forget(const std::string& device) {
    return ask("DELETE", "/api/devices/" + encoded(device));
}

} // namespace navrel
