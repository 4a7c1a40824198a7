#pragma once

#include <QByteArray>
#include <QRandomGenerator>

namespace navrel {

/// A source written to try a scan with.
struct TellingText {
    QByteArray path;
    QByteArray text;
};

/// A random text of the pieces that the patterns are made of, that end them, and that almost are
/// one; so most places come close to a match.
TellingText makeTellingText(QRandomGenerator& random);

/// A text as one line of ASCII.
QByteArray readable(const QByteArray& text);

} // namespace navrel
