#include "companion/MapCommand.h"

#include "codemap/CodeMapViews.h"
#include "codemap/MapBuilder.h"
#include "codemap/tree/Paths.h"
#include "companion/terminal/MapText.h"

#include <array>
#include <boost/json/serialize.hpp>
#include <cstdio>
#include <functional>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace navrel {

namespace json = boost::json;

namespace {

enum MapExitCode { kMapShown = 0, kNotFound = 1, kMapUsage = 2 };
enum class View { tree, outline, search, types, notes, changes };

constexpr std::size_t kSearchLimit = 200;

struct Option {
    std::string_view name;
    View view;
    bool hasArgument;
};
constexpr std::array kOptions = {
    Option{"--outline", View::outline, true},  Option{"--search", View::search, true},
    Option{"--types", View::types, false},     Option{"--notes", View::notes, false},
    Option{"--changes", View::changes, false},
};

struct Request {
    std::string bundlePath;
    View view = View::tree;
    std::string argument; // a file or a query
    bool isJSON = false;
};

const Option* optionNamed(std::string_view name) {
    for (const Option& option : kOptions) {
        if (option.name == name) {
            return &option;
        }
    }
    return nullptr;
}

/// Nothing for what is not understood.
std::optional<Request> requestOf(const std::vector<std::string>& arguments) {
    Request request;
    bool hasView = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        if (const Option* const option = optionNamed(argument)) {
            if (hasView || (option->hasArgument && index + 1 == arguments.size())) {
                return std::nullopt;
            }
            hasView = true;
            request.view = option->view;
            request.argument = option->hasArgument ? arguments[++index] : std::string();
        } else if (argument == "--json") {
            request.isJSON = true;
        } else if (argument.starts_with('-') || !request.bundlePath.empty()) {
            return std::nullopt;
        } else {
            request.bundlePath = argument;
        }
    }
    return request.bundlePath.empty() ? std::nullopt : std::optional(request);
}

std::string absolutePath(const std::string& path) {
    std::array<char, PATH_MAX> folder{};
    const char* const current = ::getcwd(folder.data(), folder.size());
    return resolvedPath(current != nullptr ? current : "/", path);
}

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

int fail(const Request& request, const QString& reason) {
    const QString shown = TerminalText::harmless(reason);
    std::fprintf(stderr, "navrel-companion: %s\n", qUtf8Printable(shown));
    if (request.isJSON) {
        json::object error;
        error["error"] = reason.toStdString();
        print(json::serialize(error) + '\n');
    }
    return kNotFound;
}

json::object viewOf(const CodeMapSnapshot& snapshot, const Request& request, const MapNode* file) {
    switch (request.view) {
    case View::tree:
        break;
    case View::outline:
        return *outlineView(snapshot, file->id);
    case View::search:
        return searchView(snapshot, {request.argument, {}, kSearchLimit});
    case View::types:
        return typesView(snapshot);
    case View::notes:
        return notesView(snapshot);
    case View::changes:
        return changesView(snapshot);
    }
    return treeView(snapshot);
}

QString textOf(const json::object& view, View kind) {
    const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    const MapText text(
        TerminalText(isTerminal ? TerminalText::Style::coloured : TerminalText::Style::plain));
    switch (kind) {
    case View::tree:
        break;
    case View::outline:
        return text.outline(view);
    case View::search:
        return text.search(view);
    case View::types:
        return text.types(view);
    case View::notes:
        return text.notes(view);
    case View::changes:
        return text.changes(view);
    }
    return text.tree(view);
}

} // namespace

int runMapCommand(const std::vector<std::string>& arguments) {
    const std::optional<Request> request = requestOf(arguments);
    if (!request) {
        std::fprintf(stderr,
                     "usage: navrel-companion map PATH.xcodeproj [--outline FILE | --search TEXT | "
                     "--types | --notes | --changes] [--json]\n");
        return kMapUsage;
    }
    const CodeMapSnapshotPtr snapshot =
        MapBuilder(absolutePath(request->bundlePath)).build(1).snapshot;
    if (snapshot->state() != MapState::loaded) {
        return fail(*request, QString::fromStdString(request->bundlePath) + QStringLiteral(": ") +
                                  QString::fromStdString(std::string(snapshot->reason())));
    }
    const MapNode* file = nullptr;
    if (request->view == View::outline) {
        file = snapshot->fileAtPath(resolvedPath(snapshot->folder(), request->argument));
        if (file == nullptr) {
            return fail(*request, QStringLiteral("The project has no file %1.")
                                      .arg(QString::fromStdString(request->argument)));
        }
    }
    const json::object view = viewOf(*snapshot, *request, file);
    print(request->isJSON ? json::serialize(view) + '\n'
                          : textOf(view, request->view).toStdString());
    return kMapShown;
}

} // namespace navrel
