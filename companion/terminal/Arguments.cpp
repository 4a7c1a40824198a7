#include "companion/terminal/Arguments.h"

#include "companion/terminal/CommandTable.h"

#include <charconv>

namespace navrel {

namespace {

std::optional<std::chrono::seconds> secondsIn(const std::string& text) {
    constexpr int kLongest = 24 * 60 * 60;
    int seconds = -1;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc() || stop != end || seconds < 0 || seconds > kLongest) {
        return std::nullopt;
    }
    return std::chrono::seconds(seconds);
}

/// Whether the word is an option; it is noted then.
bool takeOption(const std::string& word, Arguments& arguments) {
    if (word == "--json") {
        arguments.isJSON = true;
    } else if (word == "--device") {
        arguments.isDevice = true;
    } else if (word == "--plain") {
        arguments.isPlain = true;
    } else if (word == "--color=always" || word == "--colour=always") {
        arguments.colour = Arguments::Colour::always;
    } else if (word == "--color=never" || word == "--colour=never") {
        arguments.colour = Arguments::Colour::never;
    } else if (word == "--color=auto" || word == "--colour=auto") {
        arguments.colour = Arguments::Colour::automatic;
    } else if (word == "--complete") {
        arguments.wantsCompletion = true;
    } else if (word == "-h" || word == "--help") {
        arguments.wantsHelp = true;
    } else if (word == "-v" || word == "-V" || word == "--version") {
        arguments.wantsVersion = true;
    } else {
        return false;
    }
    return true;
}

} // namespace

std::variant<Arguments, QString> argumentsIn(const std::vector<std::string>& words) {
    Arguments arguments;
    QStringList command;
    bool areOptionsOver = false;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        const QString text = QString::fromStdString(word);
        if (areOptionsOver || arguments.wantsCompletion || !word.starts_with('-') || word == "-") {
            command.append(text);
        } else if (word == "--") {
            areOptionsOver = true;
        } else if (word == "--wait" || word.starts_with("--wait=")) {
            const bool isNext = word == "--wait";
            const auto seconds =
                isNext ? (at + 1 < words.size() ? secondsIn(words[at + 1]) : std::nullopt)
                       : secondsIn(word.substr(word.find('=') + 1));
            if (!seconds) {
                return QStringLiteral("--wait needs a number of seconds, as in --wait 30.");
            }
            arguments.wait = *seconds;
            at += isNext ? 1 : 0;
        } else if (!takeOption(word, arguments)) {
            return QStringLiteral("There is no option %1; navrel-companion --help lists all.")
                .arg(text);
        }
    }
    arguments.command = command.join(u' ');
    return arguments;
}

} // namespace navrel
