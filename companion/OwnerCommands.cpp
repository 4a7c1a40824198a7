#include "companion/OwnerCommands.h"

#include "companion/MapText.h"
#include "companion/QRText.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <charconv>
#include <cstdio>
#include <unistd.h>

namespace navrel {

namespace json = boost::json;

namespace {

enum ExitCode { kSuccess = 0, kFailure = 1, kUsage = 2 };

/// What a command is run with.
struct Invocation {
    const OwnerLink& link;
    std::string argument;
    bool isJSON = false;
    TerminalText::Style style = TerminalText::Style::plain;
};

struct Command {
    std::string_view name;
    bool hasArgument;
    int (*run)(const Invocation& invocation);
};

void print(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

void printLine(const QString& text) {
    print(text + QLatin1Char('\n'));
}

int complain(const QString& text) {
    std::fprintf(stderr, "navrel-companion: %s\n", qUtf8Printable(TerminalText::harmless(text)));
    return kFailure;
}

QString textAt(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    if (value == nullptr) {
        return {};
    }
    const std::string text =
        value->is_string() ? std::string(value->as_string()) : json::serialize(*value);
    return TerminalText::harmless(QString::fromStdString(text));
}

std::optional<json::object> objectOf(std::string_view text) {
    json::error_code error;
    json::value value = json::parse(text, error);
    return !error && value.is_object() ? std::optional(std::move(value.get_object()))
                                       : std::nullopt;
}

/// The answer's object, empty for one without a body; nothing, with a complaint, for a refusal.
std::optional<json::object> ask(const Invocation& invocation, const std::string& method,
                                const std::string& target, const std::string& body = {}) {
    const auto answer = invocation.link.ask(method, target, body);
    if (!answer) {
        complain(QStringLiteral("no Navrel of yours answers; is it running?"));
        return std::nullopt;
    }
    auto object = objectOf(answer->body).value_or(json::object());
    constexpr long kFirstRefusal = 300;
    if (answer->status >= kFirstRefusal) {
        const QString hint = textAt(object, "hint");
        complain(textAt(object, "error") + (hint.isEmpty() ? hint : QLatin1Char(' ') + hint));
        return std::nullopt;
    }
    return object;
}

std::string encoded(const std::string& text) {
    return QByteArray::fromStdString(text).toPercentEncoding().toStdString();
}

std::optional<std::string> identifierOf(const Invocation& invocation, const std::string& file) {
    const auto tree = ask(invocation, "GET", "/api/tree");
    if (!tree) {
        return std::nullopt;
    }
    const QString absolute =
        QDir::cleanPath(QDir::current().absoluteFilePath(QString::fromStdString(file)));
    auto identifier = identifierOfFile(*tree, file, absolute.toStdString());
    if (!identifier) {
        complain(QStringLiteral("the project has no file %1.").arg(QString::fromStdString(file)));
    }
    return identifier;
}

/// Prints an answer: as it is, or as `show` has it.
template <typename Show>
int printAnswer(const Invocation& invocation, const std::optional<json::object>& answer,
                Show show) {
    if (!answer) {
        return kFailure;
    }
    print(invocation.isJSON ? QString::fromStdString(json::serialize(*answer)) + QLatin1Char('\n')
                            : show(*answer));
    return kSuccess;
}

int runPair(const Invocation& invocation) {
    return printAnswer(
        invocation, ask(invocation, "POST", "/api/pairing"), [&](const json::object& offer) {
            const QString url = textAt(offer, "url");
            QString text = qrText(url.toStdString(), invocation.style) +
                           QStringLiteral("\nScan this, or open  %1\nThe code to type: %2\n")
                               .arg(url, textAt(offer, "code"));
            const QString fingerprint = textAt(offer, "fingerprint");
            if (!fingerprint.isEmpty()) {
                text += QStringLiteral("The certificate's SHA-256: %1\n").arg(fingerprint);
            }
            return text;
        });
}

int runDevices(const Invocation& invocation) {
    return printAnswer(
        invocation, ask(invocation, "GET", "/api/devices"), [](const json::object& devices) {
            QString text;
            for (const json::value& item : devices.at("items").as_array()) {
                const json::object& device = item.as_object();
                text += QStringLiteral("%1  %2  seen %3%4%5\n")
                            .arg(textAt(device, "number"), textAt(device, "label"),
                                 textAt(device, "seen"),
                                 device.at("readOnly").as_bool() ? QStringLiteral("  read only")
                                                                 : QString(),
                                 device.at("connected").as_bool() ? QStringLiteral("  connected")
                                                                  : QString());
            }
            return text.isEmpty() ? QStringLiteral("No device is paired.\n") : text;
        });
}

int runForget(const Invocation& invocation) {
    return printAnswer(invocation,
                       ask(invocation, "DELETE", "/api/devices/" + encoded(invocation.argument)),
                       [](const json::object&) { return QStringLiteral("Forgotten.\n"); });
}

QString stateText(const json::object& state) {
    const auto part = [&state](const char* key) -> const json::object& {
        return state.at(key).as_object();
    };
    QString text =
        QStringLiteral("%1 %2\nProject: %3 %4\nEditor: %5 %6\nDevice: %7\nBrowsers: %8\n")
            .arg(textAt(state, "program"), textAt(state, "version"),
                 textAt(part("project"), "state"), textAt(part("project"), "name"),
                 textAt(part("editor"), "state"), textAt(part("editor"), "name"),
                 textAt(part("device"), "state"), textAt(part("browsers"), "mode"));
    for (const json::value& address : part("browsers").at("addresses").as_array()) {
        text +=
            QStringLiteral("  %1\n").arg(QString::fromStdString(std::string(address.as_string())));
    }
    for (const json::value& message : state.at("messages").as_array()) {
        text += QStringLiteral("%1: %2 %3\n")
                    .arg(textAt(message.as_object(), "level"), textAt(message.as_object(), "text"),
                         textAt(message.as_object(), "hint"));
    }
    return text;
}

int runState(const Invocation& invocation) {
    return printAnswer(invocation, ask(invocation, "GET", "/api/state"), &stateText);
}

int runSearch(const Invocation& invocation) {
    return printAnswer(
        invocation, ask(invocation, "GET", "/api/search?q=" + encoded(invocation.argument)),
        [&](const json::object& view) { return MapText(invocation.style).search(view); });
}

int runOutline(const Invocation& invocation) {
    const auto identifier = identifierOf(invocation, invocation.argument);
    if (!identifier) {
        return kFailure;
    }
    return printAnswer(
        invocation, ask(invocation, "GET", "/api/files/" + *identifier + "/outline"),
        [&](const json::object& view) { return MapText(invocation.style).outline(view); });
}

/// Listens before it asks, since the outcome may come at once.
std::optional<json::object> outcomeOf(const Invocation& invocation, const std::string& body) {
    std::optional<json::object> outcome;
    QString number;
    const bool hasCome =
        invocation.link.readEvents([&](std::string_view name, std::string_view data) {
            if (name == "hello") {
                const auto request = ask(invocation, "POST", "/api/open", body);
                number = request ? textAt(*request, "request") : QString();
                return request.has_value();
            }
            auto event = name == "opened" ? objectOf(data) : std::nullopt;
            if (event && textAt(*event, "request") == number) {
                outcome = std::move(event);
            }
            return !outcome.has_value();
        });
    if (!hasCome) {
        complain(QStringLiteral("Navrel does not say how it went."));
    }
    return outcome;
}

int runOpen(const Invocation& invocation) {
    const auto [file, line] = fileAndLine(invocation.argument);
    const auto identifier = identifierOf(invocation, file);
    if (!identifier) {
        return kFailure;
    }
    json::object request = {{"file", *identifier}};
    if (line > 0) {
        request["line"] = line;
    }
    const auto outcome = outcomeOf(invocation, json::serialize(request));
    if (!outcome) {
        return kFailure;
    }
    const bool isOpened = textAt(*outcome, "outcome") == QStringLiteral("opened");
    if (invocation.isJSON) {
        printLine(QString::fromStdString(json::serialize(*outcome)));
    } else if (isOpened) {
        printLine(QStringLiteral("Opened in %1.").arg(textAt(*outcome, "editor")));
    } else {
        complain(textAt(*outcome, "reason"));
    }
    return isOpened ? kSuccess : kFailure;
}

constexpr std::array kCommands = {
    Command{"pair", false, &runPair},    Command{"devices", false, &runDevices},
    Command{"forget", true, &runForget}, Command{"state", false, &runState},
    Command{"search", true, &runSearch}, Command{"outline", true, &runOutline},
    Command{"open", true, &runOpen},
};

const Command* commandNamed(std::string_view name) {
    const auto* const command =
        std::find_if(kCommands.begin(), kCommands.end(),
                     [name](const Command& each) { return each.name == name; });
    return command == kCommands.end() ? nullptr : command;
}

/// Calls `visit` for every file of a tree.
template <typename Visit>
void visitFiles(const json::object& node, const Visit& visit) {
    if (node.at("kind").as_string() == "file") {
        visit(node);
    }
    if (const json::value* const children = node.if_contains("children")) {
        for (const json::value& child : children->as_array()) {
            visitFiles(child.as_object(), visit);
        }
    }
}

} // namespace

bool isOwnerCommand(std::string_view name) {
    return commandNamed(name) != nullptr;
}

std::pair<std::string, std::uint32_t> fileAndLine(const std::string& text) {
    const auto colon = text.rfind(':');
    std::uint32_t line = 0;
    if (colon != std::string::npos) {
        const char* const end = text.data() + text.size();
        const auto [last, error] = std::from_chars(text.data() + colon + 1, end, line);
        if (error == std::errc() && last == end) {
            return {text.substr(0, colon), line};
        }
    }
    return {text, 0};
}

std::optional<std::string> identifierOfFile(const json::object& tree, std::string_view name,
                                            std::string_view absolute) {
    std::string found;
    std::size_t foundLength = 0;
    std::vector<std::string> named;
    const auto visit = [&](const json::object& file) {
        const json::value* const value = file.if_contains("path");
        const std::string path = value == nullptr ? std::string() : std::string(value->as_string());
        const bool isIt = path == name || absolute.ends_with('/' + path);
        const std::string id(file.at("id").as_string());
        if (isIt && !path.empty() && (path == name || path.size() > foundLength)) {
            found = id;
            foundLength = path == name ? std::string::npos : path.size();
        }
        if (file.at("name").as_string() == name) {
            named.push_back(id);
        }
    };
    if (const json::value* const root = tree.if_contains("root")) {
        visitFiles(root->as_object(), visit);
    }
    if (found.empty() && named.size() == 1) {
        found = named.front();
    }
    return found.empty() ? std::nullopt : std::optional(found);
}

int runOwnerCommand(const std::vector<std::string>& arguments, const OwnerLink& link) {
    std::vector<std::string> words = arguments;
    const bool isJSON = std::erase(words, "--json") > 0;
    const Command* const command = words.empty() ? nullptr : commandNamed(words.front());
    if (command == nullptr || words.size() != (command->hasArgument ? 2U : 1U)) {
        std::fprintf(stderr, "usage: navrel-companion pair | devices | forget N | state | "
                             "search TEXT | outline FILE | open FILE[:LINE] [--json]\n");
        return kUsage;
    }
    const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    return command->run({link, command->hasArgument ? words.back() : std::string(), isJSON,
                         isTerminal ? TerminalText::Style::coloured : TerminalText::Style::plain});
}

} // namespace navrel
