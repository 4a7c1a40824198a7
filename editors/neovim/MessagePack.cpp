#include "editors/neovim/MessagePack.h"

#include "support/core/Assertion.h"

#include <QtEndian>

#include <array>
#include <bit>
#include <limits>
#include <utility>

namespace navrel {

namespace {

// The format's first bytes. Those below 0xC0 and from 0xE0 on hold a small value themselves.
constexpr quint8 kLastPositiveFixint = 0x7F;
constexpr quint8 kLastFixmap = 0x8F;
constexpr quint8 kLastFixarray = 0x9F;
constexpr quint8 kLastFixstr = 0xBF;
constexpr quint8 kNil = 0xC0;
constexpr quint8 kFalse = 0xC2;
constexpr quint8 kTrue = 0xC3;
constexpr quint8 kBin8 = 0xC4;
constexpr quint8 kBin32 = 0xC6;
constexpr quint8 kExt8 = 0xC7;
constexpr quint8 kExt32 = 0xC9;
constexpr quint8 kFloat32 = 0xCA;
constexpr quint8 kFloat64 = 0xCB;
constexpr quint8 kUint8 = 0xCC;
constexpr quint8 kUint64 = 0xCF;
constexpr quint8 kInt8 = 0xD0;
constexpr quint8 kInt64 = 0xD3;
constexpr quint8 kFixext1 = 0xD4;
constexpr quint8 kFixext16 = 0xD8;
constexpr quint8 kStr8 = 0xD9;
constexpr quint8 kStr32 = 0xDB;
constexpr quint8 kArray16 = 0xDC;
constexpr quint8 kArray32 = 0xDD;
constexpr quint8 kMap16 = 0xDE;
constexpr quint8 kMap32 = 0xDF;
constexpr quint8 kFirstNegativeFixint = 0xE0;

template <typename Integer>
void appendBigEndian(QByteArray& bytes, quint8 first, Integer value) {
    std::array<char, sizeof(Integer)> encoded;
    qToBigEndian(value, encoded.data());
    bytes += static_cast<char>(first);
    bytes.append(encoded.data(), encoded.size());
}

void append(QByteArray& bytes, const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::UnknownType:
        bytes += static_cast<char>(kNil);
        return;
    case QMetaType::Bool:
        bytes += static_cast<char>(value.toBool() ? kTrue : kFalse);
        return;
    case QMetaType::Int:
    case QMetaType::LongLong:
        appendBigEndian<qint64>(bytes, kInt64, value.toLongLong());
        return;
    case QMetaType::QByteArray: {
        const QByteArray text = value.toByteArray();
        appendBigEndian<quint32>(bytes, kStr32, static_cast<quint32>(text.size()));
        bytes += text;
        return;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        appendBigEndian<quint32>(bytes, kMap32, static_cast<quint32>(map.size()));
        for (auto entry = map.begin(); entry != map.end(); ++entry) {
            append(bytes, entry.key().toUtf8());
            append(bytes, entry.value());
        }
        return;
    }
    default:
        break;
    }
    NAVREL_ASSERT(value.typeId() == QMetaType::QVariantList);
    const QVariantList list = value.toList();
    appendBigEndian<quint32>(bytes, kArray32, static_cast<quint32>(list.size()));
    for (const QVariant& element : list) {
        append(bytes, element);
    }
}

using Outcome = MessagePackReading::Outcome;

/// Reads one value after another; each function returns whether it went well, and `outcome` says
/// why not.
class Reader {
public:
    explicit Reader(QByteArrayView bytes) : bytes_(bytes) {}

    bool read(QVariant& value, int depth);
    qsizetype position() const { return position_; }
    Outcome outcome() const { return outcome_; }

private:
    bool fail(Outcome outcome) {
        outcome_ = outcome;
        return false;
    }

    bool take(qsizetype count, QByteArrayView& taken) {
        if (bytes_.size() - position_ < count) {
            return fail(Outcome::Incomplete);
        }
        taken = bytes_.sliced(position_, count);
        position_ += count;
        return true;
    }

    /// A big-endian unsigned integer of 1, 2, 4 or 8 bytes.
    bool takeUnsigned(int size, quint64& number) {
        QByteArrayView taken;
        if (!take(size, taken)) {
            return false;
        }
        number = 0;
        for (const char byte : taken) {
            number = number << 8 | static_cast<quint8>(byte);
        }
        return true;
    }

    bool readUnsigned(int size, QVariant& value);
    bool readSigned(int size, QVariant& value);
    bool readReal(int size, QVariant& value);
    bool readBytes(quint64 length, QVariant& value);
    bool readSizedBytes(int sizeOfLength, QVariant& value);
    bool skipExtension(quint64 length);
    bool skipSizedExtension(int sizeOfLength);
    bool readList(quint64 count, QVariant& value, int depth);
    bool readMap(quint64 count, QVariant& value, int depth);
    bool readSmall(quint8 first, QVariant& value, int depth);
    bool readScalar(quint8 first, QVariant& value);
    bool readCollection(quint8 first, QVariant& value, int depth);

    const QByteArrayView bytes_;
    qsizetype position_ = 0;
    Outcome outcome_ = Outcome::Complete;
};

bool Reader::readUnsigned(int size, QVariant& value) {
    quint64 number = 0;
    if (!takeUnsigned(size, number)) {
        return false;
    }
    if (number > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
        return fail(Outcome::Invalid);
    }
    value = static_cast<qint64>(number);
    return true;
}

bool Reader::readSigned(int size, QVariant& value) {
    quint64 number = 0;
    if (!takeUnsigned(size, number)) {
        return false;
    }
    const int unusedBits = 64 - 8 * size;
    value = static_cast<qint64>(number << unusedBits) >> unusedBits;
    return true;
}

bool Reader::readReal(int size, QVariant& value) {
    quint64 bits = 0;
    if (!takeUnsigned(size, bits)) {
        return false;
    }
    value = size == 4 ? static_cast<double>(std::bit_cast<float>(static_cast<quint32>(bits)))
                      : std::bit_cast<double>(bits);
    return true;
}

bool Reader::readBytes(quint64 length, QVariant& value) {
    QByteArrayView taken;
    if (!take(static_cast<qsizetype>(length), taken)) {
        return false;
    }
    value = taken.toByteArray();
    return true;
}

bool Reader::readSizedBytes(int sizeOfLength, QVariant& value) {
    quint64 length = 0;
    return takeUnsigned(sizeOfLength, length) && readBytes(length, value);
}

bool Reader::skipExtension(quint64 length) {
    QByteArrayView skipped;
    constexpr int kTypeByte = 1;
    return take(static_cast<qsizetype>(length) + kTypeByte, skipped);
}

bool Reader::skipSizedExtension(int sizeOfLength) {
    quint64 length = 0;
    return takeUnsigned(sizeOfLength, length) && skipExtension(length);
}

// A count promises nothing: elements are made as their bytes are met.
bool Reader::readList(quint64 count, QVariant& value, int depth) {
    QVariantList list;
    for (quint64 i = 0; i < count; ++i) {
        QVariant element;
        if (!read(element, depth + 1)) {
            return false;
        }
        list.append(std::move(element));
    }
    value = std::move(list);
    return true;
}

bool Reader::readMap(quint64 count, QVariant& value, int depth) {
    QVariantMap map;
    for (quint64 i = 0; i < count; ++i) {
        QVariant key;
        QVariant element;
        if (!read(key, depth + 1)) {
            return false;
        }
        if (key.typeId() != QMetaType::QByteArray) {
            return fail(Outcome::Invalid);
        }
        if (!read(element, depth + 1)) {
            return false;
        }
        map.insert(QString::fromUtf8(key.toByteArray()), std::move(element));
    }
    value = std::move(map);
    return true;
}

bool Reader::read(QVariant& value, int depth) {
    if (depth > kMessagePackDepth) {
        return fail(Outcome::Invalid);
    }
    QByteArrayView taken;
    if (!take(1, taken)) {
        return false;
    }
    const auto first = static_cast<quint8>(taken.front());
    if (first < kNil || first >= kFirstNegativeFixint) {
        return readSmall(first, value, depth);
    }
    return first >= kArray16 ? readCollection(first, value, depth) : readScalar(first, value);
}

bool Reader::readSmall(quint8 first, QVariant& value, int depth) {
    constexpr quint8 kCountMask = 0x0F;
    constexpr quint8 kLengthMask = 0x1F;
    if (first <= kLastPositiveFixint || first >= kFirstNegativeFixint) {
        value = static_cast<qint64>(static_cast<qint8>(first));
        return true;
    }
    if (first <= kLastFixmap) {
        return readMap(first & kCountMask, value, depth);
    }
    if (first <= kLastFixarray) {
        return readList(first & kCountMask, value, depth);
    }
    static_assert(kLastFixstr + 1 == kNil);
    return readBytes(first & kLengthMask, value);
}

bool Reader::readScalar(quint8 first, QVariant& value) {
    const auto sizeFrom = [first](quint8 smallest) { return 1 << (first - smallest); };
    if (first == kNil) {
        return true;
    }
    if (first == kFalse || first == kTrue) {
        value = first == kTrue;
        return true;
    }
    if (first >= kBin8 && first <= kBin32) {
        return readSizedBytes(sizeFrom(kBin8), value);
    }
    if (first >= kExt8 && first <= kExt32) {
        return skipSizedExtension(sizeFrom(kExt8));
    }
    if (first == kFloat32 || first == kFloat64) {
        return readReal(first == kFloat32 ? 4 : 8, value);
    }
    if (first >= kUint8 && first <= kUint64) {
        return readUnsigned(sizeFrom(kUint8), value);
    }
    if (first >= kInt8 && first <= kInt64) {
        return readSigned(sizeFrom(kInt8), value);
    }
    if (first >= kFixext1 && first <= kFixext16) {
        return skipExtension(static_cast<quint64>(sizeFrom(kFixext1)));
    }
    if (first >= kStr8 && first <= kStr32) {
        return readSizedBytes(sizeFrom(kStr8), value);
    }
    return fail(Outcome::Invalid);
}

bool Reader::readCollection(quint8 first, QVariant& value, int depth) {
    const bool isMap = first == kMap16 || first == kMap32;
    const int sizeOfCount = first == kArray16 || first == kMap16 ? 2 : 4;
    quint64 count = 0;
    if (!takeUnsigned(sizeOfCount, count)) {
        return false;
    }
    return isMap ? readMap(count, value, depth) : readList(count, value, depth);
}

} // namespace

QByteArray messagePackOf(const QVariant& value) {
    QByteArray bytes;
    append(bytes, value);
    return bytes;
}

MessagePackReading readMessagePack(QByteArrayView bytes) {
    Reader reader(bytes);
    MessagePackReading reading;
    const bool isComplete = reader.read(reading.value, 0);
    reading.outcome = reader.outcome();
    reading.length = isComplete ? reader.position() : 0;
    return reading;
}

} // namespace navrel
