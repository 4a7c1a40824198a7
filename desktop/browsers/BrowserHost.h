#pragma once

#include "web/CompanionHost.h"

#include <QObject>
#include <QString>

#include <functional>

namespace navrel {

class Editor;
class KZDataManager;

/// Brings the requests of the server for browsers to the main thread: called on the server's
/// thread, it queues a job for each. Must be made and destroyed on the main thread, and outlive the
/// server.
class BrowserHost final : public QObject, public CompanionHost {
public:
    /// Called on the main thread. None may be null.
    struct Events {
        std::function<void()> fileTypesDidChange;
        std::function<void(const QString& label)> deviceDidPair;
        std::function<void()> accessDidChange;
        std::function<void(bool anyClientFollows)> followingDidChange;
    };

    BrowserHost(KZDataManager& dataManager, Editor& editor, Events events);

    void openFile(const std::string& absolutePath, std::uint32_t line, std::uint32_t column,
                  Reply reply) override;
    void goBack(Reply reply) override;
    void switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) override;
    void devicePaired(const std::string& label) override;
    void accessChanged() override;
    void followingChanged(bool anyClientFollows) override;

private:
    void onMainThread(std::function<void()> job);

    KZDataManager& dataManager_;
    Editor& editor_;
    const Events events_;
};

} // namespace navrel
