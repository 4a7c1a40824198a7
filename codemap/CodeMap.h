#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace navrel {

class FolderWatch;

/// The code base of the selected project, kept up to date by a thread of its own. Its functions may
/// be called from any thread and return at once.
class CodeMap {
public:
    /// What one new snapshot changed.
    struct Change {
        std::uint64_t revision = 0;
        std::vector<NodeID> files; ///< whose outline is another, or which came or went
        bool tree = false;         ///< whether groups, names or places changed
    };
    using Observer = std::function<void(const Change& change)>;

    CodeMap();
    /// With another way to notice changes than the system's own.
    explicit CodeMap(std::unique_ptr<FolderWatch> watch);
    /// Ends the thread. No observer is called afterwards.
    ~CodeMap();
    CodeMap(const CodeMap&) = delete;
    CodeMap& operator=(const CodeMap&) = delete;

    /// Maps the project of a bundle (an absolute path to an .xcodeproj or .xcworkspace) from now
    /// on; an empty path maps nothing.
    void open(const std::string& bundlePath);

    /// Has the files of another project of the workspace mapped too, by its node, until another
    /// bundle is opened. Does nothing for a node that is no project.
    void include(NodeID project);

    /// The newest snapshot; never null.
    CodeMapSnapshotPtr snapshot() const;

    /// Has `observer` called after each new snapshot, on the map's thread: it must return at once.
    /// The token is given to `removeObserver`, after which the observer is not called again.
    std::uint64_t addObserver(Observer observer);
    void removeObserver(std::uint64_t token);

    /// Whether the system reports changes. False where its limit of watches is used up: then the
    /// map looks at the disk once a second instead.
    bool isWatching() const;

    /// How many files of the bundle that was opened last were mapped so far.
    std::size_t filesMapped() const;

private:
    class Worker;
    std::unique_ptr<Worker> worker_;
};

} // namespace navrel
