#pragma once

#include "codemap/CodeMapSnapshot.h"
#include "web/HTTPMessage.h"

#include <boost/json/fwd.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace navrel {

/// The views that are the same for every client, rendered once a revision; and the snapshots
/// before, for what changed since. Any thread; rendering takes its time on the caller's.
class RenderedViews {
public:
    using ChangesView = std::function<boost::json::object(const CodeMapSnapshot&)>;

    /// Who asks for a tree.
    struct Reader {
        int device;
        const HTTPRequest& request;
    };

    explicit RenderedViews(ChangesView changesView);

    /// The whole tree, 304 where the client has it.
    HTTPResponse tree(const CodeMapSnapshotPtr& snapshot, const Reader& reader);

    /// What changed since a revision; the whole tree where that is shorter, or the revision is none
    /// that this device has read lately. Revisions begin again with the program: that of a page
    /// which is older than the program may mean another tree now.
    HTTPResponse treeSince(const CodeMapSnapshotPtr& snapshot, std::uint64_t revision,
                           const Reader& reader);

    /// Files and symbols that changed on this branch. Reads the repository, but not again at once.
    HTTPResponse changes(const CodeMapSnapshotPtr& snapshot);

private:
    struct Tree {
        CodeMapSnapshotPtr snapshot;
        std::shared_ptr<const std::string> plain;
        std::shared_ptr<const std::string> compressed;
    };
    struct Changes {
        std::uint64_t revision = 0;
        std::chrono::steady_clock::time_point at;
        std::shared_ptr<const std::string> text;
    };

    struct Kept {
        CodeMapSnapshotPtr snapshot;
        std::set<int> readers; ///< devices
    };

    Tree renderedTree(const CodeMapSnapshotPtr& snapshot);
    void keep(const CodeMapSnapshotPtr& snapshot, int device);
    CodeMapSnapshotPtr snapshotReadBy(int device, std::uint64_t revision);

    const ChangesView changesView_;
    const std::string run_; ///< part of every tag: another one each time the program runs

    std::mutex keptMutex_;
    std::deque<Kept> kept_; ///< the oldest first
    std::mutex treeMutex_;  ///< held while rendering: others wait for the same tree
    Tree tree_;
    std::mutex changesMutex_;
    Changes changes_;
};

/// A JSON body, compressed where that pays and the client takes it.
HTTPResponse compressibleResponse(std::string body, const HTTPRequest& request);

} // namespace navrel
