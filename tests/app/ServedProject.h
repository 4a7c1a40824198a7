#pragma once

#include "app/AppDelegate.h"
#include "project/KZDataManager.h"
#include "support/core/UserDefaults.h"
#include "tests/FakeClock.h"
#include "tests/FakeEditor.h"
#include "tests/LogRecorder.h"
#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/app/FakeDesktop.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>

namespace navrel {

/// A small project, a data manager on it, an application delegate and a device, all in this
/// process. The test adds files before `launch`, and runs passes by hand.
class ServedProject : public ::testing::Test {
protected:
    ~ServedProject() override;

    /// Starts the program on the project, or on none, with a device that it connects to. Requests
    /// are let in by `activate`, as in the program.
    void launch();
    void launchWithoutProject();
    /// The same on the project, but with nobody listening on the loopback address.
    void launchUnconnected();

    /// One pass over the project.
    void runPass() { manager_->updateInBackground(); }

    /// Lets time pass for the link and the menu. Attempts to connect that become due have been made
    /// when this returns.
    void passTime(Clock::Duration duration);
    /// Waits until the condition holds, while time passes.
    template <typename Condition>
    [[nodiscard]] bool waitWhileTimePasses(Condition condition) {
        return waitUntil([&] {
            if (condition()) {
                return true;
            }
            clock_.advance(kTick);
            return false;
        });
    }
    /// Waits until the program has connected to the device again.
    [[nodiscard]] bool waitForReconnection(TestDevice& device) {
        return waitWhileTimePasses([&] { return device.isConnectionWaiting(); }) &&
               device.waitForConnection();
    }
    /// Whether the next attempt on 127.0.0.1 has its time: not while one is parked or under way.
    bool isNextPollScheduled() const;

    static constexpr std::chrono::milliseconds kTick{100};

    FakeClock clock_;
    SmallProject project_;
    QTemporaryDir profile_;
    LogRecorder log_;
    FakeDesktop desktop_;
    FakeEditor editor_;
    QString version_ = QStringLiteral("1.4.2");
    /// A hub that never hears of a device, unless the test puts another one here.
    std::shared_ptr<PTUSBHub> hub_ = PTUSBHub::create(nullptr);
    /// Tells whom the program has reached on the loopback address: as it is, unless the test knows
    /// better.
    std::function<LoopbackPeer(int socket)> loopbackPeer_ = &systemLoopbackPeer;
    std::unique_ptr<UserDefaults> defaults_;
    std::shared_ptr<KZDataManager> manager_;
    std::shared_ptr<AppDelegate> delegate_;
    TestDevice device_;

private:
    void chooseProject();
    void start();

    Clock::TimePoint launched_;
};

} // namespace navrel
