#include "transport/usb/daemon/USBDaemonAddress.h"

#include "support/core/Log.h"
#include "transport/usb/daemon/HostLookup.h"

#include <QRegularExpression>

namespace navrel {

namespace {

constexpr char kAddressVariable[] = "USBMUXD_SOCKET_ADDRESS";
const QString kDefaultPath = QStringLiteral("/var/run/usbmuxd");
const QString kPathPrefix = QStringLiteral("UNIX:");
const QString kAnyPort = QStringLiteral("1");

/// Letters, digits, "-", "_" and ".", as hosts have them in their names.
bool isHostName(const QString& host) {
    static const QRegularExpression kHostName(QStringLiteral("\\A(?!\\.)[A-Za-z0-9._-]{1,253}\\z"));
    static const QRegularExpression kOnlyDigits(QStringLiteral("\\A[0-9.]*\\z"));
    return kHostName.match(host).hasMatch() && !kOnlyDigits.match(host).hasMatch();
}

bool isPort(const QString& text) {
    bool isNumber = false;
    return text.toUShort(&isNumber) > 0 && isNumber;
}

} // namespace

std::optional<USBDaemonAddress> USBDaemonAddress::fromText(const QString& text) {
    if (text.startsWith(kPathPrefix)) {
        const QString path = text.sliced(kPathPrefix.size());
        return path.isEmpty() ? std::nullopt : std::optional(USBDaemonAddress{path, {}, {}});
    }
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    QString host = text.first(qMax<qsizetype>(colon, 0));
    const bool isBracketed = host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']'));
    if (isBracketed) {
        host = host.sliced(1, host.size() - 2);
    }
    const QString port = text.sliced(colon + 1);
    const bool isHost = numericAddress(host, kAnyPort) || (!isBracketed && isHostName(host));
    if (host.isEmpty() || !isPort(port) || !isHost) {
        return std::nullopt;
    }
    return USBDaemonAddress{{}, host, port};
}

USBDaemonAddress USBDaemonAddress::fromEnvironment() {
    const USBDaemonAddress standard = {kDefaultPath, {}, {}};
    if (!qEnvironmentVariableIsSet(kAddressVariable)) {
        return standard;
    }
    const QString text = qEnvironmentVariable(kAddressVariable);
    const auto address = fromText(text);
    if (!address) {
        log(QStringLiteral("Ignoring %1: neither \"UNIX:\" and a path nor a host and a port: "
                           "%2")
                .arg(QLatin1String(kAddressVariable), text));
    }
    return address.value_or(standard);
}

} // namespace navrel
