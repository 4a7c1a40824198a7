#include "codemap/CodeSearch.h"

#include "codemap/FuzzyMatch.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace navrel {

namespace {

constexpr std::size_t kSymbolKinds = static_cast<std::size_t>(SymbolKind::namespaceScope) + 1;
constexpr std::string_view kFile = "file";
constexpr std::string_view kMark = "mark";
constexpr std::string_view kNote = "note";

/// Which kinds are asked for.
class KindFilter {
public:
    explicit KindFilter(const std::vector<std::string_view>& kinds) {
        const auto has = [&kinds](std::string_view kind) {
            return kinds.empty() || std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
        };
        for (std::size_t kind = 0; kind < kSymbolKinds; ++kind) {
            symbols_[kind] = has(nameOf(static_cast<SymbolKind>(kind)));
        }
        files = has(kFile);
        marks = has(kMark);
        notes = has(kNote);
    }

    bool allows(SymbolKind kind) const { return symbols_[static_cast<std::size_t>(kind)]; }

    bool files = false;
    bool marks = false;
    bool notes = false;

private:
    std::array<bool, kSymbolKinds> symbols_{};
};

enum class Table : std::uint8_t { files, symbols, marks, notes };

/// What a user means rather, where nothing else decides: a type before what adds to one, what it
/// does before what it has.
enum class Rank : std::uint8_t { type, addition, function, member, file, mark, note };

Rank rankOf(SymbolKind kind) {
    switch (kind) {
    case SymbolKind::classType:
    case SymbolKind::actor:
    case SymbolKind::structType:
    case SymbolKind::unionType:
    case SymbolKind::enumType:
    case SymbolKind::protocol:
    case SymbolKind::typeAlias:
    case SymbolKind::typeDefinition:
    case SymbolKind::namespaceScope:
        return Rank::type;
    case SymbolKind::category:
    case SymbolKind::extension:
    case SymbolKind::implementation:
        return Rank::addition;
    case SymbolKind::method:
    case SymbolKind::initializer:
    case SymbolKind::deinitializer:
    case SymbolKind::subscript:
    case SymbolKind::operatorFunction:
    case SymbolKind::function:
    case SymbolKind::macro:
        return Rank::function;
    case SymbolKind::enumCase:
    case SymbolKind::property:
    case SymbolKind::field:
    case SymbolKind::variable:
    case SymbolKind::associatedType:
        break;
    }
    return Rank::member;
}

/// Where the name of a candidate is, besides its file.
struct Entry {
    Rank rank{};
    Table table{};
    std::uint32_t index = 0; // its place in that table of the outline
};

struct Candidate {
    int score = 0;
    std::uint32_t length = 0;
    std::int64_t modified = 0;
    std::uint32_t node = 0; // its place in the tree
    Entry entry;

    /// Whether it comes before another one.
    bool operator<(const Candidate& other) const {
        return std::tie(other.score, length, other.modified, entry.rank, node, entry.table,
                        entry.index) < std::tie(score, other.length, modified, other.entry.rank,
                                                other.node, other.entry.table, other.entry.index);
    }
};

/// Gathers the best candidates.
class Search {
public:
    Search(const CodeMapSnapshot& snapshot, const SearchRequest& request)
        : snapshot_(snapshot), filter_(request.kinds),
          limit_(std::clamp<std::size_t>(request.limit, 1, kMaximumSearchLimit)),
          match_(request.query) {}

    SearchResults run() {
        SearchResults results;
        if (match_.isEmpty()) {
            return results;
        }
        visitFiles();
        std::sort(best_.begin(), best_.end());
        for (const Candidate& candidate : best_) {
            results.items.push_back(resultOf(candidate));
        }
        results.truncated = found_ > best_.size();
        return results;
    }

private:
    void visitFiles() {
        std::unordered_set<const Outline*> seen; // of a file that is listed twice
        seen.reserve(snapshot_.nodes().size());
        for (node_ = 0; node_ < snapshot_.nodes().size(); ++node_) {
            const MapNode& node = *snapshot_.nodes()[node_];
            if (filter_.files && node.kind == NodeKind::file) {
                consider(node.name, nameLettersOf(node.name), node, {Rank::file, Table::files, 0});
            }
            if (node.outline && seen.insert(node.outline.get()).second) {
                visitOutline(node, *node.outline);
            }
        }
    }

    void visitOutline(const MapNode& file, const Outline& outline) {
        const LetterSet wanted = match_.letters();
        std::uint32_t index = 0;
        for (const Symbol& symbol : outline.symbols()) {
            if (mayHold(symbol.letters.all, wanted) && filter_.allows(symbol.kind)) {
                consider(outline.text(symbol.name), symbol.letters, file,
                         {rankOf(symbol.kind), Table::symbols, index});
            }
            ++index;
        }
        if (filter_.marks) {
            visitTexts(file, outline, outline.headings(), {Rank::mark, Table::marks, 0});
        }
        if (filter_.notes) {
            visitTexts(file, outline, outline.notes(), {Rank::note, Table::notes, 0});
        }
    }

    template <typename Entries>
    void visitTexts(const MapNode& file, const Outline& outline, const Entries& entries,
                    Entry which) {
        for (const auto& entry : entries) {
            consider(outline.text(entry.text), entry.letters, file, which);
            ++which.index;
        }
    }

    void consider(std::string_view name, const NameLetters& letters, const MapNode& file,
                  const Entry& entry) {
        if (!mayHold(letters.all, match_.letters())) {
            return;
        }
        Candidate candidate{0, static_cast<std::uint32_t>(name.size()), file.modified, node_,
                            entry};
        // Once it is known that there are more than asked for, most need no look.
        if (found_ > limit_) {
            candidate.score = match_.bound(name, letters);
            if (!(candidate < best_.front())) {
                return;
            }
        }
        const std::optional<int> score = match_.score(name, leastScore(candidate));
        if (!score) {
            return;
        }
        ++found_;
        candidate.score = *score;
        if (best_.size() < limit_) {
            best_.push_back(candidate);
            std::push_heap(best_.begin(), best_.end());
        } else if (candidate < best_.front()) {
            std::pop_heap(best_.begin(), best_.end());
            best_.back() = candidate;
            std::push_heap(best_.begin(), best_.end());
        }
    }

    /// Which score a candidate needs at least to be among the best.
    int leastScore(const Candidate& candidate) const {
        if (found_ <= limit_) {
            return 0;
        }
        const Candidate& worst = best_.front();
        return worst.score + (candidate.length > worst.length ? 1 : 0);
    }

    SearchResult resultOf(const Candidate& candidate) {
        const MapNode& file = *snapshot_.nodes()[candidate.node];
        SearchResult result;
        result.file = &file;
        switch (candidate.entry.table) {
        case Table::files:
            describeFile(file, result);
            break;
        case Table::symbols:
            describeSymbol(*file.outline, candidate.entry.index, result);
            break;
        case Table::marks: {
            const Heading& heading = file.outline->headings()[candidate.entry.index];
            result.kind = kMark;
            result.name = file.outline->text(heading.text);
            result.line = heading.line;
            result.container = symbolAround(*file.outline, heading.line);
            break;
        }
        case Table::notes: {
            const Note& note = file.outline->notes()[candidate.entry.index];
            result.kind = kNote;
            result.name = file.outline->text(note.text);
            result.line = note.line;
            result.container = symbolAround(*file.outline, note.line);
            break;
        }
        }
        result.positions = match_.positions(result.name);
        return result;
    }

    void describeFile(const MapNode& file, SearchResult& result) const {
        result.kind = kFile;
        result.name = file.name;
        const MapNode* const parent = snapshot_.node(file.parent);
        result.container = parent != nullptr ? std::string_view(parent->name) : std::string_view();
    }

    /// The innermost declaration that holds a line; empty at the top of a file.
    static std::string_view symbolAround(const Outline& outline, std::uint32_t line) {
        std::string_view name;
        for (const Symbol& symbol : outline.symbols()) {
            if (symbol.line <= line && line <= symbol.endLine) {
                name = outline.nameOf(symbol);
            }
        }
        return name;
    }

    static void describeSymbol(const Outline& outline, std::uint32_t index, SearchResult& result) {
        const Symbol& symbol = outline.symbols()[index];
        result.kind = nameOf(symbol.kind);
        result.name = outline.text(symbol.name);
        result.line = symbol.line;
        for (std::uint32_t before = index; before-- > 0 && symbol.depth > 0;) {
            const Symbol& other = outline.symbols()[before];
            if (other.depth < symbol.depth) {
                result.container = outline.text(other.name);
                return;
            }
        }
    }

    const CodeMapSnapshot& snapshot_;
    KindFilter filter_;
    std::size_t limit_;
    FuzzyMatch match_;
    std::uint32_t node_ = 0;
    std::size_t found_ = 0;
    std::vector<Candidate> best_; // a heap with the worst on top
};

} // namespace

SearchResults searchIn(const CodeMapSnapshot& snapshot, const SearchRequest& request) {
    return Search(snapshot, request).run();
}

} // namespace navrel
