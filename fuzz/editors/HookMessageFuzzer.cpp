#include "editors/hooks/HookMessage.h"
#include "support/core/Assertion.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>

// What a plug-in may write: any line is read or refused, and what is read keeps its limits. A place
// that a plug-in reported can be asked for again, in one line.
namespace navrel {
namespace {

using Kind = HookMessage::Kind;

constexpr qsizetype kMaximumShownText = 200;

void checkRequestFor(const EditorPlace& place) {
    const QByteArray line = hookOpenLine(place, 1);
    NAVREL_ASSERT(line.endsWith('\n') && line.count('\n') == 1);
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    NAVREL_ASSERT(request.value(QStringLiteral("open")).toString().toUtf8() == place.path);
    NAVREL_ASSERT(request.value(QStringLiteral("line")).toInt() == place.line);
    NAVREL_ASSERT(request.value(QStringLiteral("column")).toInt() == place.column);
}

void check(const QByteArray& line) {
    const auto message = hookMessageFrom(line);
    if (!message) {
        return;
    }
    NAVREL_ASSERT(message->editor.size() <= kMaximumShownText);
    NAVREL_ASSERT(message->reason.size() <= kMaximumShownText);
    NAVREL_ASSERT(message->place.line >= 0 && message->place.column >= 0);
    NAVREL_ASSERT(message->kind == Kind::Hello || message->folders.isEmpty());
    if (message->kind == Kind::Active) {
        checkRequestFor(message->place);
    }
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    navrel::check(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    return 0;
}
