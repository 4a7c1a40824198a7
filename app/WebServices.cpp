#include "app/WebServices.h"

#include "app/Desktop.h"
#include "app/TextFetch.h"
#include "app/WebServer.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <utility>

namespace navrel {

namespace {

void logUnopened(const QUrl& url) {
    log(QStringLiteral("Failed to open url: %1").arg(url.toString(QUrl::FullyEncoded)));
}

} // namespace

WebServices::WebServices(World world) : world_(std::move(world)) {}

ProgramFacts::Update WebServices::updateOf(const QString& latest) const {
    using State = ProgramFacts::Update::State;
    if (!hasAddress(world_.server)) {
        return {State::off, {}};
    }
    if (latest.isEmpty()) {
        return {State::unreachable, {}};
    }
    return latest == world_.version ? ProgramFacts::Update{State::current, {}}
                                    : ProgramFacts::Update{State::other, latest};
}

ProgramFacts::Update WebServices::checkForUpdate() const {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto latest = fetchText(addressOf(QStringLiteral("/apps/Navrel/version.txt")));
    const ProgramFacts::Update update = updateOf(latest.value_or(QString()));
    if (update.state != ProgramFacts::Update::State::other) {
        return update;
    }
    const int answer = world_.desktop.runAlert(
        QStringLiteral("Navrel update"),
        QStringLiteral("New version (%1) of the Navrel OSX client available:").arg(*latest),
        {QStringLiteral("Download"), QStringLiteral("OK")});
    if (answer == kAlertFirstButtonReturn) {
        openURL(addressOf(QStringLiteral("/apps/Navrel/Navrel-Latest.zip")));
    }
    return update;
}

void WebServices::showManual() const {
    NAVREL_ASSERT_MAIN_THREAD();
    if (hasAddress(world_.server) || world_.installedManual.isEmpty()) {
        return openURL(
            addressOf(QStringLiteral("/apps/Navrel/Navrel-v%1.pdf").arg(world_.version)));
    }
    if (!world_.desktop.openFile(world_.installedManual)) {
        logUnopened(QUrl::fromLocalFile(world_.installedManual));
    }
}

QUrl WebServices::addressOf(const QString& path) const {
    QUrl url = world_.server;
    url.setPath(path);
    return url;
}

void WebServices::openURL(const QUrl& url) const {
    world_.desktop.openURL(url, [url] { logUnopened(url); });
}

} // namespace navrel
