#include "codemap/BranchChanges.h"

#include "codemap/SourceOutline.h"
#include "codemap/tree/Paths.h"

#include <algorithm>
#include <git2.h>
#include <memory>
#include <optional>
#include <set>

namespace navrel {

namespace {

using Clock = std::chrono::steady_clock;

/// Pairs of files that are compared to find renamed ones, each way.
constexpr std::size_t kRenameLimit = 200;

template <typename Type, void (*Free)(Type*)>
struct Freeing {
    void operator()(Type* object) const { Free(object); }
};
template <typename Type, void (*Free)(Type*)>
using Owned = std::unique_ptr<Type, Freeing<Type, Free>>;

using Repository = Owned<git_repository, git_repository_free>;
using Reference = Owned<git_reference, git_reference_free>;
using Commit = Owned<git_commit, git_commit_free>;
using Tree = Owned<git_tree, git_tree_free>;
using Diff = Owned<git_diff, git_diff_free>;
using Patch = Owned<git_patch, git_patch_free>;

/// The library is started before the first use and never ended: other threads may use it.
void startLibrary() {
    static const int started = git_libgit2_init();
    static_cast<void>(started);
}

/// What a function of the library makes; null on failure.
template <typename Pointer, typename Function, typename... Arguments>
Pointer made(Function function, Arguments... arguments) {
    typename Pointer::pointer object = nullptr;
    return function(&object, arguments...) == 0 ? Pointer(object) : Pointer();
}

std::string shortNameOf(const git_reference& reference) {
    const char* const name = git_reference_shorthand(&reference);
    return name != nullptr ? name : "";
}

Reference referenceNamed(git_repository& repository, const char* name) {
    Reference reference = made<Reference>(git_reference_lookup, &repository, name);
    return reference ? made<Reference>(git_reference_resolve, reference.get()) : nullptr;
}

/// The branch that a clone begins with.
Reference defaultBranch(git_repository& repository) {
    for (const char* name :
         {"refs/remotes/origin/HEAD", "refs/remotes/origin/main", "refs/remotes/origin/master",
          "refs/heads/main", "refs/heads/master"}) {
        if (Reference reference = referenceNamed(repository, name)) {
            return reference;
        }
    }
    return nullptr;
}

std::string_view withoutRemote(std::string_view branch) {
    const std::size_t slash = branch.find('/');
    return slash == std::string_view::npos ? branch : branch.substr(slash + 1);
}

/// The branch that `head` is compared with; null for a repository without any.
Reference baseOf(git_repository& repository, const git_reference& head) {
    Reference upstream = made<Reference>(git_branch_upstream, &head);
    Reference usual = defaultBranch(repository);
    if (!upstream) {
        return usual;
    }
    const std::string name = shortNameOf(*upstream);
    const bool isOwnCopy = withoutRemote(name) == shortNameOf(head);
    const bool isDefault = usual && withoutRemote(name) == withoutRemote(shortNameOf(*usual));
    return isOwnCopy && !isDefault && usual ? std::move(usual) : std::move(upstream);
}

std::string textOf(const git_oid& id) {
    std::string text(GIT_OID_HEXSZ, '0');
    git_oid_fmt(text.data(), &id);
    return text;
}

ChangeStatus statusOf(git_delta_t status) {
    switch (status) {
    case GIT_DELTA_ADDED:
    case GIT_DELTA_UNTRACKED:
    case GIT_DELTA_COPIED:
        return ChangeStatus::added;
    case GIT_DELTA_DELETED:
        return ChangeStatus::deleted;
    case GIT_DELTA_RENAMED:
        return ChangeStatus::renamed;
    default:
        return ChangeStatus::modified;
    }
}

/// Lines of the new file that a hunk touches. Where it only takes lines away, those around.
struct TouchedLines {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

/// The innermost symbols around touched lines, which ascend: one way through both.
class SymbolsAround {
public:
    explicit SymbolsAround(const Outline& outline) : outline_(outline) {}

    void touch(std::uint32_t line) {
        const std::vector<Symbol>& symbols = outline_.symbols();
        for (; next_ < symbols.size() && symbols[next_].line <= line; ++next_) {
            while (!open_.empty() && symbols[open_.back()].end <= next_) {
                open_.pop_back();
            }
            open_.push_back(next_);
        }
        while (!open_.empty() && symbols[open_.back()].endLine < line) {
            open_.pop_back();
        }
        if (!open_.empty()) {
            found_.insert(open_.back());
        }
    }

    std::vector<ChangedSymbol> found() const {
        std::vector<ChangedSymbol> symbols;
        for (const std::size_t index : found_) {
            const Symbol& symbol = outline_.symbols()[index];
            symbols.push_back({std::string(outline_.nameOf(symbol)), symbol.line});
        }
        return symbols;
    }

private:
    const Outline& outline_;
    std::size_t next_ = 0;
    std::vector<std::size_t> open_; // those around the last line, the innermost last
    std::set<std::size_t> found_;
};

std::vector<ChangedSymbol> symbolsAt(const Outline& outline,
                                     const std::vector<TouchedLines>& touched) {
    SymbolsAround symbols(outline);
    for (const TouchedLines& lines : touched) {
        const std::uint32_t last = std::min(lines.last, outline.lines());
        for (std::uint32_t line = lines.first; line <= last; ++line) {
            symbols.touch(line);
        }
    }
    return symbols.found();
}

/// One comparison, until its time is over.
class Comparison {
public:
    Comparison(git_repository& repository, const CodeMapSnapshot& snapshot)
        : repository_(repository), snapshot_(snapshot),
          deadline_(Clock::now() + kMaximumComparingTime) {
        const char* const folder = git_repository_workdir(&repository);
        workingTree_ = folder != nullptr ? resolvedPath("/", folder) : std::string();
    }

    /// Nothing where the repository cannot be compared.
    std::optional<BranchChanges> run() {
        BranchChanges changes;
        const Tree base = workingTree_.empty() ? nullptr : baseTree(changes);
        const Diff diff = base ? compare(*base) : nullptr;
        if (!diff || !findRenamed(*diff)) {
            return std::nullopt;
        }
        changes.state = ChangesState::ok;
        const std::size_t count = git_diff_num_deltas(diff.get());
        for (std::size_t index = 0; index < count; ++index) {
            if (changes.files.size() == kMaximumChangedFiles) {
                break;
            }
            if (isOver()) {
                return std::nullopt;
            }
            addFile(*diff, index, changes.files);
        }
        return changes;
    }

private:
    bool isOver() const { return Clock::now() >= deadline_; }

    static int stopWhenOver(const git_diff*, const char*, const char*, void* comparison) {
        return static_cast<const Comparison*>(comparison)->isOver() ? -1 : 0;
    }

    /// The tree of the merge base, which `changes` is told of.
    Tree baseTree(BranchChanges& changes) {
        Reference head;
        if (git_reference* found = nullptr; git_repository_head(&found, &repository_) == 0) {
            head.reset(found);
        }
        const git_oid* const headID = head ? git_reference_target(head.get()) : nullptr;
        if (headID == nullptr) {
            return nullptr;
        }
        git_oid id = *headID;
        const Reference base = baseOf(repository_, *head);
        const git_oid* const baseID = base ? git_reference_target(base.get()) : nullptr;
        changes.base = shortNameOf(base ? *base : *head);
        // Without a common commit, what was committed last stands for it.
        if (git_oid common{};
            baseID != nullptr && git_merge_base(&common, &repository_, headID, baseID) == 0) {
            id = common;
        }
        changes.mergeBase = textOf(id);
        const Commit commit = made<Commit>(git_commit_lookup, &repository_, &id);
        return commit ? made<Tree>(git_commit_tree, commit.get()) : nullptr;
    }

    Diff compare(git_tree& base) {
        git_diff_options options = GIT_DIFF_OPTIONS_INIT;
        options.flags = GIT_DIFF_INCLUDE_UNTRACKED | GIT_DIFF_RECURSE_UNTRACKED_DIRS |
                        GIT_DIFF_IGNORE_SUBMODULES | GIT_DIFF_INCLUDE_TYPECHANGE |
                        GIT_DIFF_DISABLE_PATHSPEC_MATCH;
        options.context_lines = 0;
        options.max_size = static_cast<git_off_t>(kMaximumSourceSize);
        options.payload = this;
        options.progress_cb = stopWhenOver;
        return made<Diff>(git_diff_tree_to_workdir_with_index, &repository_, &base, &options);
    }

    static bool findRenamed(git_diff& diff) {
        git_diff_find_options options = GIT_DIFF_FIND_OPTIONS_INIT;
        options.flags = GIT_DIFF_FIND_RENAMES | GIT_DIFF_FIND_FOR_UNTRACKED;
        options.rename_limit = kRenameLimit;
        return git_diff_find_similar(&diff, &options) == 0;
    }

    void addFile(git_diff& diff, std::size_t index, std::vector<ChangedFile>& files) const {
        const git_diff_delta& delta = *git_diff_get_delta(&diff, index);
        ChangedFile changed;
        changed.status = statusOf(delta.status);
        const bool isDeleted = changed.status == ChangeStatus::deleted;
        const char* const path = isDeleted ? delta.old_file.path : delta.new_file.path;
        changed.absolutePath = resolvedPath(workingTree_, path);
        changed.file = fileAt(changed.absolutePath);
        const bool isBelow = isWithin(changed.absolutePath, folder());
        if (changed.file == nullptr && !(isDeleted && isBelow)) {
            return;
        }
        if (changed.file != nullptr && changed.file->outline && !isDeleted) {
            changed.symbols = changed.status == ChangeStatus::added
                                  ? allSymbols(*changed.file->outline)
                                  : symbolsAt(*changed.file->outline, touchedLines(diff, index));
        }
        files.push_back(std::move(changed));
    }

    std::string_view folder() const { return snapshot_.folder(); }

    const MapNode* fileAt(const std::string& absolutePath) const {
        return snapshot_.fileAtPath(absolutePath);
    }

    /// In a file that is new, all are.
    static std::vector<ChangedSymbol> allSymbols(const Outline& outline) {
        std::vector<ChangedSymbol> symbols;
        for (const Symbol& symbol : outline.symbols()) {
            symbols.push_back({std::string(outline.nameOf(symbol)), symbol.line});
        }
        return symbols;
    }

    static std::vector<TouchedLines> touchedLines(git_diff& diff, std::size_t index) {
        std::vector<TouchedLines> touched;
        const Patch patch = made<Patch>(git_patch_from_diff, &diff, index);
        const std::size_t count = patch ? git_patch_num_hunks(patch.get()) : 0;
        for (std::size_t hunk = 0; hunk < count; ++hunk) {
            const git_diff_hunk* found = nullptr;
            if (git_patch_get_hunk(&found, nullptr, patch.get(), hunk) != 0) {
                continue;
            }
            // A hunk without new lines stands behind the line that it names.
            const auto first = static_cast<std::uint32_t>(std::max(found->new_start, 1));
            const auto lines = static_cast<std::uint32_t>(std::max(found->new_lines, 1));
            touched.push_back({first, first + lines - 1});
        }
        return touched;
    }

    git_repository& repository_;
    const CodeMapSnapshot& snapshot_;
    Clock::time_point deadline_;
    std::string workingTree_;
};

} // namespace

BranchChanges branchChangesOf(const CodeMapSnapshot& snapshot) {
    BranchChanges changes;
    if (snapshot.folder().empty()) {
        return changes;
    }
    startLibrary();
    git_repository* found = nullptr;
    const int outcome =
        git_repository_open_ext(&found, std::string(snapshot.folder()).c_str(), 0, nullptr);
    const Repository repository(found);
    if (outcome == GIT_ENOTFOUND) {
        return changes;
    }
    changes.state = ChangesState::unavailable;
    if (outcome != 0) {
        return changes;
    }
    return Comparison(*repository, snapshot).run().value_or(std::move(changes));
}

} // namespace navrel
