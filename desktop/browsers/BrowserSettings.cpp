#include "desktop/browsers/BrowserSettings.h"

#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/core/UserDefaults.h"

#include <QStringList>

#include <optional>

namespace navrel {

namespace {

constexpr char kBrowserVariable[] = "NAVREL_BROWSER";
const QString kModeKey = QStringLiteral("browserAccess");
const QString kPortKey = QStringLiteral("browserPort");
const QString kPlainHTTPKey = QStringLiteral("browserPlainHTTP");
const QString kCertificateKey = QStringLiteral("browserCertificate");
const QString kKeyKey = QStringLiteral("browserKey");
const QString kHostsKey = QStringLiteral("browserHosts");

std::optional<std::uint16_t> portIn(const QString& text) {
    bool isNumber = false;
    const std::uint16_t port = text.toUShort(&isNumber);
    return isNumber && port > 0 ? std::optional(port) : std::nullopt;
}

void ignore(const QString& name, const QString& value) {
    log(QStringLiteral("Ignoring %1: %2").arg(name, value));
}

void readPreferences(const UserDefaults& defaults, AccessSettings& settings) {
    if (const auto text = defaults.stringForKey(kModeKey)) {
        const auto mode = accessModeFromText(text->toStdString());
        if (!mode) {
            ignore(kModeKey, *text);
        }
        settings.mode = mode.value_or(settings.mode);
    }
    if (const auto text = defaults.stringForKey(kPortKey)) {
        const auto port = portIn(*text);
        if (!port) {
            ignore(kPortKey, *text);
        }
        settings.port = port.value_or(settings.port);
    }
    settings.plainHTTP = defaults.boolForKey(kPlainHTTPKey).value_or(false);
    settings.certificateFile =
        defaults.stringForKey(kCertificateKey).value_or(QString()).toStdString();
    settings.keyFile = defaults.stringForKey(kKeyKey).value_or(QString()).toStdString();
    const QStringList hosts = defaults.wordsForKey(kHostsKey);
    for (const QString& host : hosts) {
        settings.hosts.push_back(host.toStdString());
    }
}

void readEnvironment(AccessSettings& settings) {
    const QString text = qEnvironmentVariable(kBrowserVariable);
    if (text.isEmpty()) {
        return;
    }
    const qsizetype colon = text.indexOf(u':');
    const auto mode = accessModeFromText(text.left(colon).toStdString());
    const auto port = colon < 0 ? settings.port : portIn(text.mid(colon + 1));
    if (!mode || !port) {
        return ignore(QLatin1String(kBrowserVariable), text);
    }
    settings.mode = *mode;
    settings.port = *port;
}

} // namespace

AccessSettings browserSettings(const UserDefaults& userDefaults) {
    NAVREL_ASSERT_MAIN_THREAD();
    AccessSettings settings;
    readPreferences(userDefaults, settings);
    readEnvironment(settings);
    return settings;
}

void saveBrowserMode(UserDefaults& userDefaults, AccessSettings::Mode mode) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto name = nameOf(mode);
    userDefaults.setString(kModeKey,
                           QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())));
}

} // namespace navrel
