#include "tests/app/ServedProject.h"

namespace navrel {

ServedProject::~ServedProject() {
    device_.disconnect();
    delegate_ = nullptr;
    if (manager_ != nullptr) {
        manager_->setWeakSelf(nullptr);
    }
}

void ServedProject::launch() {
    defaults_ = std::make_unique<UserDefaults>(profile_.filePath(QStringLiteral("Navrel.conf")));
    defaults_->setBool(QStringLiteral("automaticProjectSelection"), false);
    defaults_->setString(QStringLiteral("lastKnownProject"), project_.bundle());
    start();
    runPass();
}

void ServedProject::launchWithoutProject() {
    defaults_ = std::make_unique<UserDefaults>(profile_.filePath(QStringLiteral("Navrel.conf")));
    start();
}

void ServedProject::start() {
    ASSERT_TRUE(device_.listen());
    manager_ = KZDataManager::init(
        {*defaults_, editor_, desktop_, scanner_, profile_.filePath(QStringLiteral("data"))});
    delegate_ = AppDelegate::create({*manager_, desktop_, *defaults_, version_});
    delegate_->applicationDidFinishLaunching();
    ASSERT_TRUE(device_.waitForConnection());
}

} // namespace navrel
