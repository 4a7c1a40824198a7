#include "editors/hooks/HookMessage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace navrel {

namespace {

using Kind = HookMessage::Kind;

/// Longer names and reasons are cut: they are shown in one line.
constexpr qsizetype kMaximumText = 200;

QString textIn(const QJsonObject& object, QLatin1String key) {
    return object.value(key).toString().left(kMaximumText);
}

HookMessage helloFrom(const QJsonObject& object) {
    HookMessage message;
    message.kind = Kind::Hello;
    message.editor = textIn(object, QLatin1String("hello"));
    const QJsonArray folders = object.value(QLatin1String("folders")).toArray();
    for (const auto& folder : folders) {
        message.folders.append(folder.toString());
    }
    return message;
}

HookMessage activeFrom(const QJsonObject& object) {
    HookMessage message;
    message.kind = Kind::Active;
    message.place.path = object.value(QLatin1String("active")).toString().toUtf8();
    message.place.line = std::max(0, object.value(QLatin1String("line")).toInt());
    message.place.column = std::max(0, object.value(QLatin1String("column")).toInt());
    message.place.isModified = object.value(QLatin1String("modified")).toBool();
    return message;
}

} // namespace

std::optional<HookMessage> hookMessageFrom(const QByteArray& line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    if (object.value(QLatin1String("hello")).isString()) {
        return helloFrom(object);
    }
    // Null is an editor without a file.
    if (object.contains(QLatin1String("active"))) {
        return activeFrom(object);
    }
    HookMessage message;
    if (object.value(QLatin1String("opened")).isDouble()) {
        message.kind = Kind::Opened;
        message.request = object.value(QLatin1String("opened")).toInteger();
    } else if (object.value(QLatin1String("refused")).isDouble()) {
        message.kind = Kind::Refused;
        message.request = object.value(QLatin1String("refused")).toInteger();
        message.reason = textIn(object, QLatin1String("reason"));
    }
    return message;
}

QByteArray hookOpenLine(const EditorPlace& place, qint64 request) {
    QJsonObject object = {{QStringLiteral("open"), QString::fromUtf8(place.path)},
                          {QStringLiteral("id"), request}};
    if (place.line > 0) {
        object.insert(QStringLiteral("line"), place.line);
    }
    if (place.column > 0) {
        object.insert(QStringLiteral("column"), place.column);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray hookBackLine(qint64 request) {
    const QJsonObject object = {{QStringLiteral("back"), true}, {QStringLiteral("id"), request}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace navrel
