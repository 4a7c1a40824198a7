#include "codemap/CodeMap.h"

#include "codemap/MapBuilder.h"
#include "codemap/tree/FolderWatch.h"
#include "codemap/tree/Paths.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

namespace navrel {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// What happens within this time becomes one snapshot: a save is several events, a checkout
/// thousands.
constexpr milliseconds kCoalescing{50};
/// How often the disk is looked at where the system cannot report changes: where its watches are
/// used up, and behind symbolic links.
constexpr milliseconds kPassInterval{1000};
/// Requests and events end a wait; this only bounds it.
constexpr milliseconds kLongWait{3'600'000};

} // namespace

/// The thread, and what it shares with others.
class CodeMap::Worker {
public:
    explicit Worker(std::unique_ptr<FolderWatch> watch)
        : watch_(std::move(watch)), snapshot_(std::make_shared<const CodeMapSnapshot>()),
          thread_([this] { run(); }) {}

    ~Worker() {
        {
            const std::lock_guard lock(mutex_);
            isStopping_ = true;
        }
        watch_->wake();
        thread_.join();
    }

    void open(const std::string& bundlePath) {
        {
            const std::lock_guard lock(mutex_);
            requestedBundle_ = bundlePath;
            requestedProjects_.clear();
        }
        watch_->wake();
    }

    void include(NodeID project) {
        {
            const std::lock_guard lock(mutex_);
            requestedProjects_.insert(project);
        }
        watch_->wake();
    }

    CodeMapSnapshotPtr snapshot() const {
        const std::lock_guard lock(mutex_);
        return snapshot_;
    }

    std::uint64_t addObserver(Observer observer) {
        const std::lock_guard lock(observersMutex_);
        observers_.emplace(++lastToken_, std::move(observer));
        return lastToken_;
    }

    void removeObserver(std::uint64_t token) {
        // Recursive: an observer may remove itself while it is called.
        const std::lock_guard lock(observersMutex_);
        observers_.erase(token);
    }

    bool isWatching() const { return isWatching_; }
    std::size_t filesMapped() const { return filesMapped_; }

private:
    void run() {
        nextPass_ = Clock::now() + kPassInterval;
        while (!isStopping()) {
            takeRequests();
            std::vector<FolderEvent> events = watch_->wait(timeUntilPass());
            if (!events.empty()) {
                gatherMore(events);
            }
            if (!builder_) {
                continue;
            }
            if (!events.empty()) {
                publish(builder_->take(events, revision_ + 1));
            }
            if (needsPasses() && Clock::now() >= nextPass_) {
                pass();
            }
        }
    }

    bool isStopping() const {
        const std::lock_guard lock(mutex_);
        return isStopping_;
    }

    bool needsPasses() const {
        return builder_ && (!builder_->isWatching() || builder_->hasLinks());
    }

    void pass() {
        publish(builder_->isWatching() ? builder_->lookAtLinks(revision_ + 1)
                                       : builder_->lookAgain(revision_ + 1));
        nextPass_ = Clock::now() + kPassInterval;
    }

    milliseconds timeUntilPass() const {
        if (!needsPasses()) {
            return kLongWait;
        }
        const auto left = std::chrono::ceil<milliseconds>(nextPass_ - Clock::now());
        return std::max(left, milliseconds(0));
    }

    void gatherMore(std::vector<FolderEvent>& events) {
        const Clock::time_point end = Clock::now() + kCoalescing;
        for (;;) {
            const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
            if (left <= milliseconds(0) || isStopping()) {
                return;
            }
            const std::vector<FolderEvent> more = watch_->wait(left);
            events.insert(events.end(), more.begin(), more.end());
        }
    }

    void takeRequests() {
        std::optional<std::string> bundle;
        std::set<NodeID> projects;
        {
            const std::lock_guard lock(mutex_);
            bundle = std::exchange(requestedBundle_, std::nullopt);
            projects = std::exchange(requestedProjects_, {});
        }
        if (bundle) {
            openBundle(*bundle);
        }
        for (const NodeID project : projects) {
            const MapNode* const node = snapshot_->node(project);
            if (builder_ && node != nullptr && node->kind == NodeKind::project) {
                publish(builder_->include(node->absolutePath, revision_ + 1));
            }
        }
    }

    void openBundle(const std::string& bundlePath) {
        builder_.reset();
        filesMapped_ = 0;
        CodeMapSnapshot::Content content;
        content.revision = revision_ + 1;
        if (!bundlePath.empty()) {
            content.state = MapState::loading;
            content.projectName = lastPartWithoutExtension(bundlePath);
        }
        CodeMap::Change change{content.revision, {}, true};
        publish(MapBuilder::Update{std::make_shared<const CodeMapSnapshot>(std::move(content)),
                                   std::move(change)});
        if (!bundlePath.empty()) {
            builder_ = std::make_unique<MapBuilder>(resolvedPath("/", bundlePath), watch_.get(),
                                                    &filesMapped_);
            publish(builder_->build(revision_ + 1));
        }
    }

    void publish(std::optional<MapBuilder::Update> update) {
        isWatching_ = !builder_ || builder_->isWatching();
        if (!update) {
            return;
        }
        revision_ = update->snapshot->revision();
        {
            const std::lock_guard lock(mutex_);
            snapshot_ = update->snapshot;
        }
        const std::lock_guard lock(observersMutex_);
        const std::map<std::uint64_t, Observer> observers = observers_;
        for (const auto& [token, observer] : observers) {
            if (observers_.contains(token)) {
                observer(update->change);
            }
        }
    }

    std::unique_ptr<FolderWatch> watch_;

    mutable std::mutex mutex_; // guards what follows
    bool isStopping_ = false;
    std::optional<std::string> requestedBundle_;
    std::set<NodeID> requestedProjects_;
    CodeMapSnapshotPtr snapshot_; // the thread alone sets it

    std::recursive_mutex observersMutex_; // guards what follows, and is held while they are called
    std::map<std::uint64_t, Observer> observers_;
    std::uint64_t lastToken_ = 0;

    std::atomic<bool> isWatching_ = true;
    std::atomic<std::size_t> filesMapped_ = 0;

    // Of the thread alone.
    std::uint64_t revision_ = 0;
    std::unique_ptr<MapBuilder> builder_;
    Clock::time_point nextPass_;

    std::thread thread_; // last: it begins when all else is there
};

CodeMap::CodeMap() : CodeMap(makeFolderWatch()) {}

CodeMap::CodeMap(std::unique_ptr<FolderWatch> watch)
    : worker_(std::make_unique<Worker>(std::move(watch))) {}

CodeMap::~CodeMap() = default;

void CodeMap::open(const std::string& bundlePath) {
    worker_->open(bundlePath);
}

void CodeMap::include(NodeID project) {
    worker_->include(project);
}

CodeMapSnapshotPtr CodeMap::snapshot() const {
    return worker_->snapshot();
}

std::uint64_t CodeMap::addObserver(Observer observer) {
    return worker_->addObserver(std::move(observer));
}

void CodeMap::removeObserver(std::uint64_t token) {
    worker_->removeObserver(token);
}

bool CodeMap::isWatching() const {
    return worker_->isWatching();
}

std::size_t CodeMap::filesMapped() const {
    return worker_->filesMapped();
}

} // namespace navrel
