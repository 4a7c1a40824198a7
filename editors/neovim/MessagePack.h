#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QVariant>

/// MessagePack, as much of it as a conversation with Neovim takes. Pure. Any thread.
///
/// Values are `QVariant`: invalid for nil, `bool`, `qint64`, `double`, `QByteArray` for texts and
/// binaries (the format does not promise that a text is valid UTF-8), `QVariantList`,
/// `QVariantMap`. An extension (Neovim's handles) is read as nil. An integer above the range of
/// `qint64` is invalid: nothing that is asked for holds one.
namespace navrel {

/// The bytes of a value: nil, `bool`, `qint64` or `int`, `QByteArray` as a text, `QVariantList` and
/// `QVariantMap` of such. Anything else breaks an invariant.
QByteArray messagePackOf(const QVariant& value);

/// What reading at the beginning of some bytes came to.
struct MessagePackReading {
    enum class Outcome {
        Complete,
        Incomplete, ///< so far so good: the value goes on beyond the bytes
        Invalid,    ///< no value, whatever follows
    };
    Outcome outcome = Outcome::Invalid;
    QVariant value;       ///< where complete
    qsizetype length = 0; ///< bytes that the value takes, where complete
};

/// Reads the value at the beginning of `bytes`. Map keys that are no texts make it invalid, as does
/// a value nested deeper than `kMessagePackDepth`.
MessagePackReading readMessagePack(QByteArrayView bytes);

/// Neovim's answers nest four levels deep; without a bound a row of array headers would exhaust the
/// stack.
inline constexpr int kMessagePackDepth = 16;

} // namespace navrel
