#include "tests/app/ServedProject.h"

#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::milliseconds kActivationDelay{1500};

} // namespace

ServedProject::~ServedProject() {
    device_.stopListening();
    device_.disconnect();
    // A channel that ends holds its delegate until it has told it.
    const std::weak_ptr<AppDelegate> watch = std::exchange(delegate_, nullptr);
    EXPECT_TRUE(waitUntil([&] { return watch.expired(); }));
    if (manager_ != nullptr) {
        manager_->setWeakSelf(nullptr);
    }
}

void ServedProject::chooseProject() {
    defaults_ = std::make_unique<UserDefaults>(profile_.filePath(QStringLiteral("Navrel.conf")));
    defaults_->setBool(QStringLiteral("automaticProjectSelection"), false);
    defaults_->setString(QStringLiteral("lastKnownProject"), project_.bundle());
}

bool ServedProject::isNextPollScheduled() const {
    const std::size_t others = clock_.now() < launched_ + kActivationDelay ? 2 : 1; // and the menu
    return clock_.scheduledCalls() > others;
}

void ServedProject::passTime(Clock::Duration duration) {
    for (Clock::Duration passed = kTick; passed <= duration; passed += kTick) {
        clock_.advance(kTick);
        ASSERT_TRUE(waitUntil([this] {
            QCoreApplication::processEvents();
            return delegate_->connectedChannel() || isNextPollScheduled();
        }));
    }
}

void ServedProject::launch() {
    ASSERT_TRUE(device_.listen());
    launchUnconnected();
    ASSERT_TRUE(device_.waitForConnection());
}

void ServedProject::launchUnconnected() {
    chooseProject();
    start();
    runPass();
}

void ServedProject::launchWithoutProject() {
    defaults_ = std::make_unique<UserDefaults>(profile_.filePath(QStringLiteral("Navrel.conf")));
    ASSERT_TRUE(device_.listen());
    start();
    ASSERT_TRUE(device_.waitForConnection());
}

void ServedProject::start() {
    manager_ = KZDataManager::init(
        {*defaults_, editor_, desktop_, profile_.filePath(QStringLiteral("data"))});
    delegate_ = AppDelegate::create(
        {*manager_, desktop_, *defaults_, version_, [this] { return hub_; }, QUrl(),
         [this](int socket) { return loopbackPeer_(socket); }, QString(), clock_});
    launched_ = clock_.now();
    delegate_->applicationDidFinishLaunching();
}

} // namespace navrel
