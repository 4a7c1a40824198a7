#pragma once

#include "web/BrowserAccess.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace navrel {

/// The contents of the pairing window, as text to show.
struct PairingContents {
    struct Device {
        int number = 0;
        QString label;
        QString lastUse; ///< "connected now", "used 5 minutes ago"
        bool readOnly = false;
        bool operator==(const Device&) const = default;
    };

    AccessSettings::Mode mode = AccessSettings::Mode::off;
    QString state;         ///< the sentence about browsers, as it is shown everywhere
    QString advice;        ///< what to know before a device is paired; may be empty
    bool isAmiss = false;  ///< whether `state` tells of a problem
    QStringList addresses; ///< the likeliest first; empty while nothing is listened on
    QString address;       ///< the one that is chosen
    QString url;           ///< what the code holds, with the ticket; empty where there is none
    QString code;          ///< "123 456"; empty once it was closed
    QString fingerprint;   ///< in groups, on lines of equal length; empty without TLS
    QList<Device> devices;

    bool operator==(const PairingContents&) const = default;
};

/// Computes the contents. `chosenAddress` is ignored if it is not among the addresses. Pure.
PairingContents pairingContents(const AccessSettings& settings, const AccessStatus& status,
                                const PairingOffer& offer, const std::vector<PairedDevice>& devices,
                                const QString& chosenAddress, const QDateTime& now);

} // namespace navrel
