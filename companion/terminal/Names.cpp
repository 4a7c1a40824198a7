#include "companion/terminal/Names.h"

#include "codemap/Characters.h"
#include "companion/terminal/ViewAccess.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <optional>
#include <utility>

namespace navrel {

namespace json = boost::json;

namespace {

template <typename Item, typename Test>
std::vector<Item> filtered(const std::vector<Item>& items, const Test& test) {
    std::vector<Item> result;
    std::copy_if(items.begin(), items.end(), std::back_inserter(result), test);
    return result;
}

/// The items that pass the first test that any item passes. The tests go from strict to lenient.
template <typename Item>
std::vector<Item> bestMatches(const std::vector<Item>& items,
                              const std::vector<std::function<bool(const Item&)>>& tests) {
    for (const auto& test : tests) {
        std::vector<Item> matches = filtered(items, test);
        if (!matches.empty()) {
            return matches;
        }
    }
    return {};
}

std::string_view withoutExtension(std::string_view name) {
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot);
}

/// "rise" of "-rise:to:" and of "rise(to:)".
std::string_view withoutParameters(std::string_view name) {
    if (name.starts_with('-') || name.starts_with('+')) {
        name.remove_prefix(1);
    }
    return name.substr(0, name.find_first_of("(:"));
}

/// 0 for anything but decimal digits, and for a number that does not fit.
std::uint32_t numberIn(std::string_view digits) {
    std::uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? number : 0;
}

/// Reads "FILE:LINE", with `separator` for the colon; nil for any other text.
std::optional<PlaceText> placeWithLine(std::string_view text, char separator) {
    const auto last = text.rfind(separator);
    const std::uint32_t line = last == text.npos ? 0 : numberIn(text.substr(last + 1));
    return line > 0 && last > 0
               ? std::optional<PlaceText>({std::string(text.substr(0, last)), {}, line})
               : std::nullopt;
}

/// Reads "FILE:LINE:COLUMN"; nil for any other text.
std::optional<PlaceText> placeWithColumn(std::string_view text) {
    const auto last = text.rfind(':');
    const std::uint32_t column = last == text.npos ? 0 : numberIn(text.substr(last + 1));
    auto place = column > 0 ? placeWithLine(text.substr(0, last), ':') : std::nullopt;
    if (place) {
        place->column = column;
    }
    return place;
}

void addNodes(const json::object& node, std::vector<NodeName>& nodes) {
    nodes.push_back({bytesAt(node, "id"), bytesAt(node, "name"), bytesAt(node, "path"),
                     bytesAt(node, "kind") != "file", numberAt(node, "symbols")});
    for (const json::value& child : arrayAt(node, "children")) {
        addNodes(objectOf(child), nodes);
    }
}

void addSymbols(const json::array& items, std::vector<SymbolName>& symbols) {
    for (const json::value& item : items) {
        const json::object& symbol = objectOf(item);
        symbols.push_back({bytesAt(symbol, "name"), bytesAt(symbol, "kind"),
                           static_cast<std::uint32_t>(numberAt(symbol, "line")),
                           static_cast<std::uint32_t>(numberAt(symbol, "endLine"))});
        addSymbols(arrayAt(symbol, "children"), symbols);
    }
}

} // namespace

std::vector<NodeName> nodesOf(const json::object& tree) {
    std::vector<NodeName> nodes;
    const json::object& root = objectAt(tree, "root");
    if (!root.empty()) {
        addNodes(root, nodes);
    }
    return nodes;
}

std::vector<NodeName> nodesNamed(const std::vector<NodeName>& nodes, std::string_view text,
                                 std::string_view absolute) {
    const std::string low = lowered(text);
    const std::string end = '/' + std::string(text);
    // An absolute path ends in the paths of several nodes: "/x/Model/Tide.m" in "Model/Tide.m" and
    // in "Tide.m". The longest one is meant.
    const auto isAt = [&](const NodeName& node) {
        return text.find('/') != std::string_view::npos && !node.path.empty() &&
               absolute.ends_with('/' + node.path);
    };
    std::size_t longest = 0;
    for (const NodeName& node : nodes) {
        longest = isAt(node) ? std::max(longest, node.path.size()) : longest;
    }
    return bestMatches<NodeName>(
        nodes,
        {
            [&](const NodeName& node) { return node.id == text; },
            [&](const NodeName& node) { return node.path == text && !text.empty(); },
            [&](const NodeName& node) { return node.path.size() == longest && isAt(node); },
            [&](const NodeName& node) { return node.path == absolute && !absolute.empty(); },
            [&](const NodeName& node) { return node.path.ends_with(end); },
            [&](const NodeName& node) { return node.name == text; },
            [&](const NodeName& node) { return lowered(node.name) == low; },
            [&](const NodeName& node) { return lowered(withoutExtension(node.name)) == low; },
            [&](const NodeName& node) {
                return !low.empty() && (lowered(node.name).find(low) != std::string::npos ||
                                        lowered(node.path).ends_with('/' + low));
            },
            [&](const NodeName& node) {
                return low.find('/') != std::string::npos &&
                       lowered(node.path).find(low) != std::string::npos;
            },
        });
}

std::vector<SymbolName> symbolsOf(const json::object& outline) {
    std::vector<SymbolName> symbols;
    addSymbols(arrayAt(outline, "items"), symbols);
    return filtered(symbols, [](const SymbolName& symbol) { return !symbol.name.empty(); });
}

std::vector<SymbolName> symbolsNamed(const std::vector<SymbolName>& symbols,
                                     std::string_view text) {
    const std::string low = lowered(text);
    return bestMatches<SymbolName>(
        symbols,
        {
            [&](const SymbolName& symbol) { return symbol.name == text; },
            [&](const SymbolName& symbol) { return withoutParameters(symbol.name) == text; },
            [&](const SymbolName& symbol) {
                return lowered(withoutParameters(symbol.name)) == low ||
                       lowered(symbol.name) == low;
            },
            [&](const SymbolName& symbol) {
                return !low.empty() && lowered(symbol.name).find(low) != std::string::npos;
            },
        });
}

std::vector<PlaceText> placesIn(std::string_view text) {
    std::vector<PlaceText> places;
    const auto add = [&](std::optional<PlaceText> place) {
        if (place) {
            places.push_back(std::move(*place));
        }
    };
    add(placeWithColumn(text));
    add(placeWithLine(text, ':'));
    places.push_back({std::string(text), {}, 0});
    for (auto at = text.find(':'); at != text.npos; at = text.find(':', at + 1)) {
        if (at > 0 && at + 1 < text.size()) {
            places.push_back(
                {std::string(text.substr(0, at)), std::string(text.substr(at + 1)), 0});
        }
    }
    if (text.size() > 1 && text.ends_with(':')) {
        places.push_back({std::string(text.substr(0, text.size() - 1)), {}, 0});
    }
    add(placeWithLine(text, ' '));
    return places;
}

} // namespace navrel
