#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace navrel {

/// An X server without a screen that anybody sees.
class XServer {
public:
    /// Whether there is one to test with, and what tells of its windows.
    static bool isAvailable();

    XServer();
    ~XServer();

    /// For DISPLAY.
    const QString& display() const { return display_; }

    /// Starts a client; it is ended before the server, if not earlier.
    void startClient(const QString& program, const QStringList& arguments);
    void endClient();

    /// The widths of the windows with this title that are shown, those within others included.
    QList<int> widthsOfShownWindows(const QString& title) const;
    /// Every window, as xwininfo lists them: what to say of a failure.
    QByteArray allWindows() const;
    /// The windows within the one with this title, as xwininfo lists them.
    QByteArray windowsWithin(const QString& title) const;

private:
    QByteArray describe(const QStringList& arguments) const;

    QProcess server_;
    QProcess client_;
    QString display_;
};

} // namespace navrel
