#include "editors/neovim/MessagePack.h"
#include "support/core/Assertion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// What a server that is none writes. A value that is read takes some of the bytes and is the same
// when nothing else follows it; cut short anywhere it is incomplete, never something else. What can
// be written again is read as what it was.
namespace navrel {
namespace {

using Outcome = MessagePackReading::Outcome;

/// Cut at so many places at most: each is a reading of its own.
constexpr qsizetype kMostCuts = 64;

/// Whether the value is of the kinds that are written, none of which is a map or a real number.
bool isWritten(const QVariant& value) {
    if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList list = value.toList();
        return std::all_of(list.begin(), list.end(), isWritten);
    }
    return value.typeId() != QMetaType::QVariantMap && value.typeId() != QMetaType::Double;
}

void checkCutsOf(QByteArrayView whole) {
    const qsizetype step = std::max<qsizetype>(1, whole.size() / kMostCuts);
    for (qsizetype length = 0; length < whole.size(); length += step) {
        NAVREL_ASSERT(readMessagePack(whole.first(length)).outcome == Outcome::Incomplete);
    }
}

void checkWritingAgain(const QVariant& value) {
    const QByteArray bytes = messagePackOf(value);
    const MessagePackReading again = readMessagePack(bytes);
    NAVREL_ASSERT(again.outcome == Outcome::Complete);
    NAVREL_ASSERT(again.length == bytes.size());
    NAVREL_ASSERT(again.value == value);
}

void check(QByteArrayView bytes) {
    const MessagePackReading reading = readMessagePack(bytes);
    if (reading.outcome != Outcome::Complete) {
        NAVREL_ASSERT(reading.length == 0);
        return;
    }
    NAVREL_ASSERT(reading.length > 0);
    NAVREL_ASSERT(reading.length <= bytes.size());
    const QByteArrayView whole = bytes.first(reading.length);
    const MessagePackReading alone = readMessagePack(whole);
    NAVREL_ASSERT(alone.outcome == Outcome::Complete);
    NAVREL_ASSERT(alone.length == reading.length);
    checkCutsOf(whole);
    if (isWritten(reading.value)) {
        checkWritingAgain(reading.value);
    }
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    navrel::check(QByteArrayView(data, static_cast<qsizetype>(size)));
    return 0;
}
