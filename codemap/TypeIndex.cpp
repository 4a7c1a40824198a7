#include "codemap/TypeIndex.h"

#include <algorithm>
#include <unordered_set>

namespace navrel {

namespace {

using Names = std::unordered_set<std::string_view>;

bool declaresItsName(SymbolKind kind) {
    return isType(kind) && kind != SymbolKind::category && kind != SymbolKind::extension &&
           kind != SymbolKind::implementation;
}

/// The type that a category or extension extends: "NSString (Trim)" is one of NSString.
std::string_view extendedType(std::string_view name) {
    return name.substr(0, name.find(" ("));
}

/// A name without its generic arguments: "Store<Item>" is declared as "Store".
std::string_view plainName(std::string_view name) {
    return name.substr(0, name.find('<'));
}

class TypeGathering {
public:
    explicit TypeGathering(const CodeMapSnapshot& snapshot) {
        std::unordered_set<const Outline*> seen; // of a file that is listed twice
        for (const MapNodePtr& node : snapshot.nodes()) {
            if (node->outline && seen.insert(node->outline.get()).second) {
                gather(*node);
            }
        }
        dropKnownImplementations();
        declareImplementations();
        addUnknownNames();
        std::stable_sort(
            entries.begin(), entries.end(),
            [](const TypeEntry& left, const TypeEntry& right) { return left.name < right.name; });
    }

    std::vector<TypeEntry> entries;

private:
    void gather(const MapNode& file) {
        for (const Symbol& symbol : file.outline->symbols()) {
            if (isType(symbol.kind)) {
                entries.push_back({file.outline->nameOf(symbol), &file, &symbol});
                if (declaresItsName(symbol.kind)) {
                    declared_.insert(file.outline->nameOf(symbol));
                }
            }
        }
    }

    void dropKnownImplementations() {
        std::erase_if(entries, [this](const TypeEntry& entry) {
            return entry.symbol->kind == SymbolKind::implementation &&
                   declared_.contains(extendedType(entry.name));
        });
    }

    void declareImplementations() {
        for (const TypeEntry& entry : entries) {
            if (entry.symbol->kind == SymbolKind::implementation) {
                declared_.insert(entry.name);
            }
        }
    }

    void addUnknownNames() {
        const std::size_t known = entries.size();
        Names added;
        for (std::size_t index = 0; index < known; ++index) {
            const TypeEntry entry = entries[index];
            for (const std::string_view name : entry.inherits()) {
                addUnknown(name, added);
            }
            if (!declaresItsName(entry.symbol->kind)) {
                addUnknown(extendedType(entry.name), added);
            }
        }
    }

    void addUnknown(std::string_view name, Names& added) {
        const bool isDeclared = declared_.contains(name) || declared_.contains(plainName(name));
        if (!name.empty() && !isDeclared && added.insert(name).second) {
            entries.push_back({name, nullptr, nullptr});
        }
    }

    Names declared_;
};

} // namespace

std::vector<std::string_view> namesIn(std::string_view inherits) {
    std::vector<std::string_view> names;
    while (!inherits.empty()) {
        const std::size_t end = inherits.find('\n');
        names.push_back(inherits.substr(0, end));
        inherits = end == std::string_view::npos ? std::string_view() : inherits.substr(end + 1);
    }
    return names;
}

std::vector<std::string_view> TypeEntry::inherits() const {
    return symbol != nullptr ? namesIn(file->outline->text(symbol->inherits))
                             : std::vector<std::string_view>();
}

std::vector<TypeEntry> typesOf(const CodeMapSnapshot& snapshot) {
    return std::move(TypeGathering(snapshot).entries);
}

} // namespace navrel
