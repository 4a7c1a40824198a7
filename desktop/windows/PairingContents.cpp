#include "desktop/windows/PairingContents.h"

#include "desktop/browsers/GatherFacts.h"

#include <chrono>

namespace navrel {

namespace {

using Mode = AccessSettings::Mode;

constexpr qsizetype kBytesOnALine = 8;
constexpr qsizetype kCharactersOfAByte = 3; // "AB:"

QString plural(qint64 count, const QString& what) {
    return count == 1 ? QStringLiteral("1 %1 ago").arg(what)
                      : QStringLiteral("%1 %2s ago").arg(count).arg(what);
}

QString ago(qint64 seconds) {
    constexpr qint64 kMinute = 60;
    constexpr qint64 kHour = 60 * kMinute;
    constexpr qint64 kDay = 24 * kHour;
    if (seconds < kMinute) {
        return QStringLiteral("just now");
    }
    if (seconds < kHour) {
        return plural(seconds / kMinute, QStringLiteral("minute"));
    }
    if (seconds < kDay) {
        return plural(seconds / kHour, QStringLiteral("hour"));
    }
    return plural(seconds / kDay, QStringLiteral("day"));
}

QString lastUseOf(const PairedDevice& device, const QDateTime& now) {
    if (device.connected) {
        return QStringLiteral("connected now");
    }
    const auto seen = std::chrono::system_clock::to_time_t(device.seen);
    return QStringLiteral("used %1").arg(ago(now.toSecsSinceEpoch() - seen));
}

QString inGroups(const std::string& fingerprint) {
    const QString text = QString::fromStdString(fingerprint);
    QStringList lines;
    for (qsizetype at = 0; at < text.size(); at += kBytesOnALine * kCharactersOfAByte) {
        lines.append(text.mid(at, kBytesOnALine * kCharactersOfAByte - 1));
    }
    return lines.join(u'\n');
}

QString grouped(const std::string& code) {
    const QString text = QString::fromStdString(code);
    return text.size() == 6 ? text.first(3) + u' ' + text.last(3) : text;
}

/// What to know before a device is paired.
QString adviceOf(const AccessSettings& settings, const StateSentence& state) {
    if (settings.mode == Mode::machine) {
        return QStringLiteral("A device reaches this machine where you forward the port to it, by "
                              "USB or SSH.");
    }
    if (settings.mode == Mode::network && !settings.plainHTTP) {
        return QStringLiteral("The browser warns of the certificate: compare its fingerprint with "
                              "the one below.");
    }
    // Where nobody is let in, the hint leads to this window.
    return settings.mode == Mode::network ? state.hint : QString();
}

} // namespace

PairingContents pairingContents(const AccessSettings& settings, const AccessStatus& status,
                                const PairingOffer& offer, const std::vector<PairedDevice>& devices,
                                const QString& chosenAddress, const QDateTime& now) {
    PairingContents contents;
    contents.mode = settings.mode;
    const StateSentence state = sentenceOf(browserFacts(settings, status, devices));
    contents.state = state.text;
    contents.advice = status.problem.empty() ? adviceOf(settings, state) : QString();
    contents.isAmiss = !status.problem.empty();
    for (const std::string& address : status.addresses) {
        contents.addresses.append(QString::fromStdString(address));
    }
    contents.address =
        contents.addresses.contains(chosenAddress) ? chosenAddress : contents.addresses.value(0);
    if (!contents.address.isEmpty() && !offer.ticket.empty()) {
        contents.url = QString::fromStdString(pairingURL(contents.address.toStdString(), offer));
        contents.code = grouped(offer.code);
    }
    contents.fingerprint = inGroups(status.fingerprint);
    for (const PairedDevice& device : devices) {
        contents.devices.append({device.number, QString::fromStdString(device.label),
                                 lastUseOf(device, now), device.readOnly});
    }
    return contents;
}

} // namespace navrel
