#include "web/RequestTarget.h"

#include "support/text/UTF8.h"

#include <charconv>

namespace navrel {

namespace {

int valueOfDigit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

/// Percent-encoded text, where a plus is a blank. Nothing for what is no text.
std::optional<std::string> decoded(std::string_view text) {
    std::string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '%') {
            result += text[index] == '+' ? ' ' : text[index];
            continue;
        }
        if (index + 2 >= text.size()) {
            return std::nullopt;
        }
        const int high = valueOfDigit(text[index + 1]);
        const int low = valueOfDigit(text[index + 2]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        result += static_cast<char>(high * 16 + low);
        index += 2;
    }
    return isValidUTF8({result.data(), static_cast<qsizetype>(result.size())})
               ? std::optional(std::move(result))
               : std::nullopt;
}

} // namespace

std::string_view RequestTarget::parameter(std::string_view name) const {
    const auto parameter = parameters.find(name);
    return parameter == parameters.end() ? std::string_view() : parameter->second;
}

std::optional<std::uint64_t> RequestTarget::number(std::string_view name,
                                                   std::uint64_t otherwise) const {
    const std::string_view text = parameter(name);
    if (text.empty()) {
        return otherwise;
    }
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                    : std::nullopt;
}

std::optional<RequestTarget> requestTarget(std::string_view target) {
    if (!target.starts_with('/')) {
        return std::nullopt;
    }
    const auto mark = target.find('?');
    RequestTarget result;
    result.path = target.substr(0, mark);
    std::string_view query = mark == std::string_view::npos ? "" : target.substr(mark + 1);
    while (!query.empty()) {
        const auto end = query.find('&');
        const std::string_view pair = query.substr(0, end);
        query.remove_prefix(end == std::string_view::npos ? query.size() : end + 1);
        const auto equals = pair.find('=');
        const auto name = decoded(pair.substr(0, equals));
        const auto value = decoded(equals == std::string_view::npos ? std::string_view()
                                                                    : pair.substr(equals + 1));
        if (!name || !value) {
            return std::nullopt;
        }
        result.parameters.emplace(*name, *value);
    }
    return result;
}

} // namespace navrel
