#include "web/RenderedViews.h"

#include "codemap/CodeMapViews.h"
#include "web/Gzip.h"
#include "web/Limits.h"
#include "web/Secrets.h"

#include <algorithm>
#include <boost/json.hpp>
#include <iterator>

namespace navrel {

namespace {

namespace json = boost::json;

constexpr std::size_t kRunBytes = 4;
/// Shorter bodies fit into one packet as they are.
constexpr std::size_t kWorthCompressing = 1400;
/// A page that is opened asks several times; a repository seldom changes within that.
constexpr std::chrono::seconds kChangesLife{2};

std::shared_ptr<const std::string> shared(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
}

} // namespace

RenderedViews::RenderedViews(ChangesView changesView)
    : changesView_(std::move(changesView)), run_(randomHex(kRunBytes)) {}

void RenderedViews::keep(const CodeMapSnapshotPtr& snapshot, int device) {
    const std::lock_guard lock(keptMutex_);
    auto kept = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& each) {
        return each.snapshot->revision() == snapshot->revision();
    });
    if (kept == kept_.end()) {
        kept_.push_back({snapshot, {}});
        kept = std::prev(kept_.end());
    }
    kept->readers.insert(device);
    if (kept_.size() > kKeptSnapshots) {
        kept_.pop_front();
    }
}

CodeMapSnapshotPtr RenderedViews::snapshotReadBy(int device, std::uint64_t revision) {
    const std::lock_guard lock(keptMutex_);
    const auto found = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& each) {
        return each.snapshot->revision() == revision && each.readers.contains(device);
    });
    return found == kept_.end() ? nullptr : found->snapshot;
}

RenderedViews::Tree RenderedViews::renderedTree(const CodeMapSnapshotPtr& snapshot) {
    const std::lock_guard lock(treeMutex_);
    if (tree_.snapshot != snapshot) {
        std::string text = json::serialize(treeView(*snapshot));
        std::string compressed = gzipped(text);
        tree_ = {snapshot, shared(std::move(text)), shared(std::move(compressed))};
    }
    return tree_;
}

HTTPResponse RenderedViews::tree(const CodeMapSnapshotPtr& snapshot, const Reader& reader) {
    keep(snapshot, reader.device);
    HTTPResponse response;
    const std::string tag = '"' + run_ + '-' + std::to_string(snapshot->revision()) + '"';
    response.fields = {{"ETag", tag}, {"Vary", "Accept-Encoding"}};
    if (reader.request.ifNoneMatch == tag) {
        response.status = 304;
        return response;
    }
    const Tree tree = renderedTree(snapshot);
    response.contentType = kJSONType;
    response.body = tree.plain;
    if (acceptsGzip(reader.request.acceptEncoding)) {
        response.body = tree.compressed;
        response.fields.emplace_back("Content-Encoding", "gzip");
    }
    return response;
}

HTTPResponse RenderedViews::treeSince(const CodeMapSnapshotPtr& snapshot, std::uint64_t revision,
                                      const Reader& reader) {
    const CodeMapSnapshotPtr since = snapshotReadBy(reader.device, revision);
    if (since == nullptr) {
        return tree(snapshot, reader);
    }
    keep(snapshot, reader.device);
    return compressibleResponse(json::serialize(treeChangesView(*since, *snapshot)),
                                reader.request);
}

HTTPResponse RenderedViews::changes(const CodeMapSnapshotPtr& snapshot) {
    const std::lock_guard lock(changesMutex_);
    const auto now = std::chrono::steady_clock::now();
    if (changes_.text == nullptr || changes_.revision != snapshot->revision() ||
        changes_.at + kChangesLife <= now) {
        auto text = shared(json::serialize(changesView_(*snapshot)));
        changes_ = {snapshot->revision(), std::chrono::steady_clock::now(), std::move(text)};
    }
    HTTPResponse response = jsonResponse(200, {});
    response.body = changes_.text;
    return response;
}

HTTPResponse compressibleResponse(std::string body, const HTTPRequest& request) {
    if (body.size() < kWorthCompressing || !acceptsGzip(request.acceptEncoding)) {
        return jsonResponse(200, std::move(body));
    }
    HTTPResponse response = jsonResponse(200, gzipped(body));
    response.fields = {{"Content-Encoding", "gzip"}, {"Vary", "Accept-Encoding"}};
    return response;
}

} // namespace navrel
