#include "codemap/Counterparts.h"

#include <algorithm>
#include <tuple>

namespace navrel {

namespace {

std::string_view stemOf(const MapNode& file) {
    const std::string_view name = file.name;
    return file.extension.empty() ? name : name.substr(0, name.size() - file.extension.size() - 1);
}

std::string_view unitOf(std::string_view stem) {
    // A name that begins with the sign is no category.
    const std::size_t sign = stem.find('+', 1);
    return stem.substr(0, sign);
}

/// With the slash at its end.
std::string_view folderOf(std::string_view path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// How many steps up and down lead from one folder to another.
std::ptrdiff_t distance(std::string_view from, std::string_view to) {
    const auto differing = std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first;
    const auto common = static_cast<std::size_t>(differing - from.begin());
    const std::size_t shared = from.substr(0, common).rfind('/') + 1;
    const auto steps = [shared](std::string_view folder) {
        const std::string_view rest = folder.substr(shared);
        return std::count(rest.begin(), rest.end(), '/');
    };
    return steps(from) + steps(to);
}

struct OtherFile {
    bool hasOtherStem = false;
    std::ptrdiff_t distance = 0;
    const MapNode* file = nullptr;

    bool operator<(const OtherFile& other) const {
        return std::tie(hasOtherStem, distance, file->absolutePath) <
               std::tie(other.hasOtherStem, other.distance, other.file->absolutePath);
    }
};

} // namespace

std::vector<NodeID> counterpartsOf(const MapNode& file, const std::vector<MapNodePtr>& nodes) {
    if (file.language == Language::none) {
        return {};
    }
    const std::string_view stem = stemOf(file);
    const std::string_view unit = unitOf(stem);
    std::vector<OtherFile> candidates;
    for (const MapNodePtr& node : nodes) {
        const bool isOther = node->language != Language::none && node->id != file.id &&
                             node->absolutePath != file.absolutePath;
        if (isOther && node->name.starts_with(unit) && unitOf(stemOf(*node)) == unit) {
            candidates.push_back(
                {stemOf(*node) != stem,
                 distance(folderOf(file.absolutePath), folderOf(node->absolutePath)), node.get()});
        }
    }
    const auto end = candidates.begin() +
                     static_cast<std::ptrdiff_t>(std::min(candidates.size(), kMostCounterparts));
    std::partial_sort(candidates.begin(), end, candidates.end());
    std::vector<NodeID> result;
    std::transform(candidates.begin(), end, std::back_inserter(result),
                   [](const OtherFile& candidate) { return candidate.file->id; });
    return result;
}

} // namespace navrel
