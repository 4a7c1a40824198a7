#include "desktop/browsers/BrowserHost.h"

#include "project/Editor.h"
#include "project/KZDataManager.h"
#include "protocol/CompanionKeys.h"
#include "support/core/MainThread.h"

#include <QMetaObject>

#include <algorithm>
#include <limits>
#include <utility>

namespace navrel {

namespace {

/// What is larger is the largest: no file has as many lines.
int editorNumber(std::uint32_t number) {
    constexpr std::uint32_t kLargest = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(number, kLargest));
}

OpenOutcome outcomeOf(const EditorOutcome& outcome) {
    return {outcome.isOpen(), outcome.editor.toStdString(), outcome.reason.toStdString(),
            outcome.hint.toStdString()};
}

} // namespace

BrowserHost::BrowserHost(KZDataManager& dataManager, Editor& editor, Events events)
    : dataManager_(dataManager), editor_(editor), events_(std::move(events)) {}

void BrowserHost::onMainThread(std::function<void()> job) {
    QMetaObject::invokeMethod(this, std::move(job), Qt::QueuedConnection);
}

void BrowserHost::openFile(const std::string& absolutePath, std::uint32_t line,
                           std::uint32_t column, Reply reply) {
    onMainThread([this, path = QString::fromStdString(absolutePath), line, column,
                  reply = std::move(reply)] {
        editor_.open(path, editorNumber(line), editorNumber(column),
                     [reply](const EditorOutcome& outcome) { reply(outcomeOf(outcome)); });
    });
}

void BrowserHost::goBack(Reply reply) {
    onMainThread([this, reply = std::move(reply)] {
        editor_.back([reply](const EditorOutcome& outcome) { reply(outcomeOf(outcome)); });
    });
}

void BrowserHost::switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) {
    onMainThread([this, switches = std::move(switches), reply = std::move(reply)] {
        for (const auto& [extension, allowed] : switches) {
            dataManager_.changeFiletypeAllowanceWithDictionary(
                {{key::extension, QString::fromStdString(extension)}, {key::allowed, allowed}});
        }
        events_.fileTypesDidChange();
        reply({true, {}, {}, {}});
    });
}

void BrowserHost::devicePaired(const std::string& label) {
    onMainThread([this, label = QString::fromStdString(label)] { events_.deviceDidPair(label); });
}

void BrowserHost::accessChanged() {
    onMainThread([this] { events_.accessDidChange(); });
}

void BrowserHost::followingChanged(bool anyClientFollows) {
    onMainThread([this, anyClientFollows] { events_.followingDidChange(anyClientFollows); });
}

} // namespace navrel
