#include "editors/kate/KateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QStringList>
#include <QUrl>
#include <QVariantList>

#include <algorithm>

namespace navrel {

namespace {

const QString kWidget = QStringLiteral("org.qtproject.Qt.QWidget");
const QString kWindows = QStringLiteral("/kate");
/// More windows than anyone has open.
constexpr qsizetype kMaximumWindows = 8;

QDBusMessage call(const QDBusConnection& bus, QDBusMessage message, const QVariantList& arguments,
                  const QDeadlineTimer& deadline) {
    message.setArguments(arguments);
    message.setAutoStartService(false);
    // Zero would stand for a default of many seconds.
    const auto left = std::max<qint64>(1, deadline.remainingTime());
    return bus.call(message, QDBus::Block, static_cast<int>(left));
}

QVariant firstOf(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
               ? reply.arguments().constFirst()
               : QVariant();
}

/// The names of Kate's processes on the bus, newest first, as process identifiers grow. Nothing
/// where the bus itself does not answer.
std::optional<QStringList> katesOn(const QDBusConnection& bus, const QDeadlineTimer& deadline) {
    const auto list = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListNames"));
    const QVariant answer = firstOf(call(bus, list, {}, deadline));
    if (!answer.isValid()) {
        return std::nullopt;
    }
    const QString prefix = QStringLiteral("org.kde.kate-");
    QStringList names = answer.toStringList();
    names.removeIf([&](const QString& name) { return !name.startsWith(prefix); });
    std::sort(names.begin(), names.end(), [&](const QString& left, const QString& right) {
        return left.mid(prefix.size()).toLongLong() > right.mid(prefix.size()).toLongLong();
    });
    return names;
}

/// The object paths of a process's windows; empty where it does not answer.
QStringList windowsOf(const QDBusConnection& bus, const QString& service,
                      const QDeadlineTimer& deadline) {
    const auto introspect = QDBusMessage::createMethodCall(
        service, kWindows, QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("Introspect"));
    const QString description = firstOf(call(bus, introspect, {}, deadline)).toString();
    static const QRegularExpression window(QStringLiteral("node name=\"(MainWindow_[0-9]+)\""));
    QStringList paths;
    for (auto match = window.globalMatch(description);
         match.hasNext() && paths.size() < kMaximumWindows;) {
        paths.append(kWindows + QLatin1Char('/') + match.next().captured(1));
    }
    return paths;
}

QVariant propertyOf(const QDBusConnection& bus, const QString& service, const QString& window,
                    const QString& name, const QDeadlineTimer& deadline) {
    const auto get = QDBusMessage::createMethodCall(
        service, window, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    return firstOf(call(bus, get, {kWidget, name}, deadline)).value<QDBusVariant>().variant();
}

/// The window that has the focus, or else the newest.
QString activeWindow(const QDBusConnection& bus, const QString& service, const QStringList& windows,
                     const QDeadlineTimer& deadline) {
    const auto isActive = [&](const QString& window) {
        return propertyOf(bus, service, window, QStringLiteral("isActiveWindow"), deadline)
            .toBool();
    };
    const auto active =
        windows.size() > 1 ? std::find_if(windows.begin(), windows.end(), isActive) : windows.end();
    return active == windows.end() ? windows.constLast() : *active;
}

} // namespace

KateReading readKateWindow(const QDBusConnection& bus, const QDeadlineTimer& deadline) {
    using Outcome = KateReading::Outcome;
    if (!bus.isConnected()) {
        return {};
    }
    const auto kates = katesOn(bus, deadline);
    if (!kates) {
        return {Outcome::Silent, {}};
    }
    if (kates->isEmpty()) {
        return {};
    }
    const QString& service = kates->constFirst();
    const QStringList windows = windowsOf(bus, service, deadline);
    if (windows.isEmpty()) {
        return {Outcome::Silent, {service, {}, false}};
    }
    const QString window = activeWindow(bus, service, windows, deadline);
    const auto file = propertyOf(bus, service, window, QStringLiteral("windowFilePath"), deadline);
    const auto isModified =
        propertyOf(bus, service, window, QStringLiteral("windowModified"), deadline);
    if (!file.isValid()) {
        return {Outcome::Silent, {service, {}, false}};
    }
    return {Outcome::Window, {service, file.toString().toUtf8(), isModified.toBool()}};
}

std::optional<bool> openInKate(const QDBusConnection& bus, const QString& service,
                               const QByteArray& path, int line, int column,
                               const QDeadlineTimer& deadline) {
    const QString url = QUrl::fromLocalFile(QString::fromUtf8(path)).toString(QUrl::FullyEncoded);
    const QString application = QStringLiteral("org.kde.Kate.Application");
    const auto method = [&](const char* name) {
        return QDBusMessage::createMethodCall(service, QStringLiteral("/MainApplication"),
                                              application, QLatin1String(name));
    };
    // Kate counts from 0.
    const QDBusMessage reply =
        line > 0 ? call(bus, method("tokenOpenUrlAt"),
                        {url, line - 1, std::max(0, column - 1), QString(), false}, deadline)
                 : call(bus, method("tokenOpenUrl"), {url, QString()}, deadline);
    const QVariant token = firstOf(reply);
    return token.isValid() ? std::optional(!token.toString().isEmpty()) : std::nullopt;
}

} // namespace navrel
