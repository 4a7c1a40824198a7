#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QString>

#include <optional>

/// What Kate offers on the session bus. Every call blocks, until the deadline at most. Any thread.
namespace navrel {

/// A window of Kate, as the bus shows it.
struct KateWindow {
    QString service;         ///< the name of the process on the bus
    QByteArray file;         ///< the path of the document in front; empty where it has none
    bool isModified = false; ///< whether that has unsaved changes
};

/// How asking for a window ended.
struct KateReading {
    enum class Outcome {
        Window,
        None,  ///< no Kate is on the bus
        Silent ///< one is, and did not answer in time; or the bus did not: no service is named then
    };
    Outcome outcome = Outcome::None;
    KateWindow window;
};

/// The Kate that was started last, and its active window.
KateReading readKateWindow(const QDBusConnection& bus, const QDeadlineTimer& deadline);

/// Shows a document at a line and a column, both from 1 (the column in UTF-16 units); at line 0 the
/// cursor stays where it was when the document was in front last. Nothing when Kate did not answer
/// in time, false when it refused.
std::optional<bool> openInKate(const QDBusConnection& bus, const QString& service,
                               const QByteArray& path, int line, int column,
                               const QDeadlineTimer& deadline);

} // namespace navrel
