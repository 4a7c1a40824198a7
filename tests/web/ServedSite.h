#pragma once

#include "tests/WaitUntil.h"
#include "tests/codemap/SnapshotBuilder.h"
#include "tests/web/WebClient.h"
#include "web/WebService.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace navrel {

/// Time that stands still until a test moves it. Any thread.
class StillClock {
public:
    std::chrono::system_clock::time_point wallTime() const {
        return std::chrono::system_clock::time_point(std::chrono::hours(24 * 365 * 55)) +
               std::chrono::milliseconds(passed_);
    }
    std::chrono::steady_clock::time_point now() const {
        return std::chrono::steady_clock::time_point(std::chrono::hours(1)) +
               std::chrono::milliseconds(passed_);
    }
    void advance(std::chrono::milliseconds time) { passed_ += time.count(); }

private:
    std::atomic<std::int64_t> passed_ = 0;
};

/// A program that records what it is asked for. Any thread.
class RecordingHost final : public CompanionHost {
public:
    void openFile(const std::string& absolutePath, std::uint32_t line, std::uint32_t column,
                  Reply reply) override;
    void goBack(Reply reply) override;
    void switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) override;
    void devicePaired(const std::string& label) override;
    void accessChanged() override { ++changes; }

    /// What was asked so far: "open /path:3" (with a column: "…:3:5"), "back", "switch m off",
    /// "paired iPad".
    std::vector<std::string> asked() const;

    std::atomic<int> changes = 0;
    /// Given to every request to the editor at once; none where nothing is set.
    std::optional<OpenOutcome> outcome = OpenOutcome{true, "Neovim", "", ""};

private:
    void record(std::string what);

    mutable std::mutex mutex_;
    std::vector<std::string> asked_;
};

/// Snapshots that a test publishes.
class PublishedMap {
public:
    MapSource source();
    void publish(CodeMapSnapshot snapshot, CodeMap::Change change);

    std::function<void()> beforeChanges; ///< called before the repository is read

private:
    std::mutex mutex_;
    CodeMapSnapshotPtr snapshot_ = std::make_shared<CodeMapSnapshot>();
    std::map<std::uint64_t, CodeMap::Observer> observers_;
    std::uint64_t lastToken_ = 0;
};

/// A server with a project of three files, in a scratch folder, on a free port of this machine,
/// with a clock that stands still. Limits are those of the program, but for the rate of requests,
/// which a test that is not about it would meet by chance.
class ServedSite : public ::testing::Test {
protected:
    ServedSite();
    ~ServedSite() override;

    /// Starts with what `settings` and `world` say now, and waits until it listens.
    void start();
    void stop() { service_.reset(); }

    std::uint16_t port() const { return service_->status().port; }
    std::string hostField() const { return "127.0.0.1:" + std::to_string(port()); }
    /// What a page of ours sends with each change.
    std::string ownPage() const;

    /// Pairs a browser; the Cookie field that it sends from then on ("navrel-…=…").
    std::string pair(const std::string& label = "iPad, Safari");

    std::string getBytes(const std::string& target, const std::string& cookie) const;
    std::string postBytes(const std::string& target, const std::string& body,
                          const std::string& cookie) const;
    WebAnswer get(const std::string& target, const std::string& cookie) const;
    WebAnswer post(const std::string& target, const std::string& body,
                   const std::string& cookie) const;
    /// Over the owner's socket, by any method.
    WebAnswer asOwner(const std::string& method, const std::string& target,
                      const std::string& body = {}) const;

    /// An open stream of events, greeted.
    WebClient events(const std::string& cookie) const;

    std::string path(const std::string& name) const {
        return folder_.filePath(QString::fromStdString(name)).toStdString();
    }
    void write(const std::string& name, const std::string& text) const;

    QTemporaryDir folder_;
    StillClock clock;
    RecordingHost host;
    PublishedMap map;
    SnapshotBuilder project;
    NodeID tide = 0;  ///< TideView.swift, with an outline
    NodeID plain = 0; ///< Notes.txt, on disk, too
    NodeID gone = 0;  ///< Gone.swift, which is in the project only
    AccessSettings settings;
    WebWorld world;
    std::unique_ptr<WebService> service_;
};

/// Every route but pairing, as the beginning of a request: "GET /api/state".
const std::vector<std::string>& everyRoute();

/// The value of a JSON text's key, as text, by a plain search: enough to look at one.
std::string valueAt(const std::string& json, const std::string& key);

} // namespace navrel
