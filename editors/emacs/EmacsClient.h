#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace navrel {

/// How `emacsclient` is run to evaluate an expression. It never starts an Emacs.
struct EmacsClient {
    QString tool;
    QStringList arguments;
};

/// Nothing where there is no client, or no server that it could find. Any thread.
std::optional<EmacsClient> emacsClientFor(const QByteArray& expression);

} // namespace navrel
