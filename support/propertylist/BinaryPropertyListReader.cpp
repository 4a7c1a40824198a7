#include "support/propertylist/BinaryPropertyList.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"

#include <QDateTime>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace navrel::propertylist {

namespace {

/// Reads objects by number, each at most once. Positions and counts come from the bytes and are
/// held against their size before anything is read or made. A failure is kept; functions return
/// an invalid variant or nothing after one.
class Reader {
public:
    explicit Reader(QByteArrayView bytes) : bytes_(bytes) {}

    std::optional<QVariant> read(std::optional<Error>* error) {
        QVariant list;
        if (readTrailer()) {
            objects_.resize(objectCount_);
            list = readObject(topObject_);
        }
        if (failure_.isEmpty()) {
            return list;
        }
        report(error, code_, QStringLiteral("byte %1: %2").arg(failurePosition_).arg(failure_));
        return std::nullopt;
    }

private:
    enum class State : std::uint8_t { unread, beingRead, read };

    struct Object {
        QVariant value;
        std::size_t valueCount = 0; // the values that it unfolds to, itself included
        State state = State::unread;
    };

    struct Marker {
        std::uint8_t kind;
        std::uint8_t low; // the marker's lower half
        quint64 position; // of the marker
        quint64 contents; // where what follows the marker begins
    };

    struct Span {
        quint64 position;
        quint64 count; // of units
    };

    bool readTrailer() {
        const auto size = static_cast<quint64>(bytes_.size());
        if (size > kMaxPropertyListBytes) {
            return fail(0, "the list has too many bytes", PropertyListErrorCode::tooLarge);
        }
        if (bytes_.size() < kHeaderSize + kTrailerSize || !isKnownVersion()) {
            return fail(0, "expected a header and a trailer of version 0");
        }
        const quint64 trailer = size - kTrailerSize;
        offsetSize_ = byteAt(trailer + 6);
        referenceSize_ = byteAt(trailer + 7);
        objectCount_ = numberAt(trailer + 8, 8);
        topObject_ = numberAt(trailer + 16, 8);
        offsetTable_ = numberAt(trailer + 24, 8);
        objectsEnd_ = offsetTable_;
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
            return fail(trailer + 6, "expected sizes from 1 to 8");
        }
        if (offsetTable_ < kHeaderSize || offsetTable_ > trailer ||
            objectCount_ > (trailer - offsetTable_) / offsetSize_) {
            return fail(trailer + 8, "expected the offset table within the bytes");
        }
        if (objectCount_ > kMaxPropertyListValues) {
            return fail(trailer + 8, "the list has too many objects",
                        PropertyListErrorCode::tooLarge);
        }
        return topObject_ < objectCount_ || fail(trailer + 16, "expected the number of an object");
    }

    bool isKnownVersion() const { return bytes_.startsWith(kBinaryMagic) && bytes_.at(6) == '0'; }

    QVariant readObject(quint64 number) {
        Object& object = objects_[number];
        if (object.state == State::unread) {
            object.state = State::beingRead;
            object.valueCount = 1;
            object.value = readUnread(number, object.valueCount);
            object.state = State::read;
        } else if (object.state == State::beingRead) {
            fail(positionOf(number), "expected no container within itself");
            return {};
        }
        return object.value;
    }

    QVariant readUnread(quint64 number, std::size_t& valueCount) {
        const quint64 position = positionOf(number);
        if (position < kHeaderSize || position >= objectsEnd_) {
            fail(offsetTable_ + number * offsetSize_, "expected the position of an object");
            return {};
        }
        const std::uint8_t byte = byteAt(position);
        const Marker marker{static_cast<std::uint8_t>(byte & 0xF0),
                            static_cast<std::uint8_t>(byte & 0x0F), position, position + 1};
        if (marker.kind == kArray || marker.kind == kDictionary) {
            return readContainer(marker, valueCount);
        }
        return readScalar(marker, byte);
    }

    QVariant readScalar(const Marker& marker, std::uint8_t byte) {
        if (byte == kFalse || byte == kTrue) {
            return byte == kTrue;
        }
        if (byte == kDate) {
            return readDate(marker);
        }
        switch (marker.kind) {
        case kInteger:
            return readInteger(marker);
        case kReal:
            return readReal(marker);
        case kData:
            return readData(marker);
        case kASCIIText:
            return readASCIIText(marker);
        case kUTF16Text:
            return readUTF16Text(marker);
        default:
            fail(marker.position, "expected the marker of an object");
            return {};
        }
    }

    QVariant readContainer(const Marker& marker, std::size_t& valueCount) {
        if (depth_ == kMaxPropertyListDepth) {
            fail(marker.position, "arrays and dictionaries are nested too deeply",
                 PropertyListErrorCode::tooLarge);
            return {};
        }
        ++depth_;
        QVariant container = marker.kind == kArray ? readArray(marker, valueCount)
                                                   : readDictionary(marker, valueCount);
        --depth_;
        return container;
    }

    QVariant readArray(const Marker& marker, std::size_t& valueCount) {
        const std::optional<Span> references = readReferences(marker, 1);
        if (!references) {
            return {};
        }
        QVariantList list;
        list.reserve(static_cast<qsizetype>(references->count));
        for (quint64 i = 0; i < references->count && failure_.isEmpty(); ++i) {
            list.append(readReference(references->position + i * referenceSize_, valueCount));
        }
        return list;
    }

    QVariant readDictionary(const Marker& marker, std::size_t& valueCount) {
        const std::optional<Span> references = readReferences(marker, 2);
        if (!references) {
            return {};
        }
        const quint64 values = references->position + references->count * referenceSize_;
        QVariantMap map;
        for (quint64 i = 0; i < references->count && failure_.isEmpty(); ++i) {
            const quint64 position = references->position + i * referenceSize_;
            const QVariant key = readReference(position, valueCount);
            if (failure_.isEmpty() && key.typeId() != QMetaType::QString) {
                fail(position, "expected text as a key");
                break;
            }
            map.insert(key.toString(), readReference(values + i * referenceSize_, valueCount));
        }
        return map;
    }

    std::optional<Span> readReferences(const Marker& marker, quint64 referencesPerItem) {
        const std::optional<Span> span = readSpan(marker, referencesPerItem * referenceSize_);
        if (!span) {
            return std::nullopt;
        }
        // A container is read once, and what it refers to unfolds to a value each at the least. So
        // this many are too many before there is memory for the first.
        references_ += span->count * referencesPerItem;
        if (references_ > kMaxPropertyListValues) {
            fail(marker.position, "the list has too many values", PropertyListErrorCode::tooLarge);
            return std::nullopt;
        }
        return span;
    }

    QVariant readReference(quint64 position, std::size_t& valueCount) {
        const quint64 number = numberAt(position, referenceSize_);
        if (number >= objectCount_) {
            fail(position, "expected the number of an object");
            return {};
        }
        QVariant value = readObject(number);
        valueCount += objects_[number].valueCount;
        if (valueCount > kMaxPropertyListValues) {
            fail(position, "the list has too many values", PropertyListErrorCode::tooLarge);
        }
        return value;
    }

    QVariant readInteger(const Marker& marker) {
        const std::optional<qint64> integer = integerAt(marker);
        return integer ? QVariant(static_cast<qlonglong>(*integer)) : QVariant();
    }

    // Integers of 16 bytes are written for what 8 bytes with a sign do not hold, and refused, but
    // for those that would have fitted.
    std::optional<qint64> integerAt(const Marker& marker) {
        const quint64 size = quint64{1} << marker.low;
        if (marker.low > 4 || !isWithinObjects(marker.contents, size)) {
            fail(marker.position, "expected an integer of 1 to 16 bytes");
            return std::nullopt;
        }
        if (size < 16) {
            return static_cast<qint64>(numberAt(marker.contents, size));
        }
        const auto upper = static_cast<qint64>(numberAt(marker.contents, 8));
        const auto lower = static_cast<qint64>(numberAt(marker.contents + 8, 8));
        if (upper != (lower < 0 ? -1 : 0)) {
            fail(marker.position, "expected an integer of 64 bits with a sign");
            return std::nullopt;
        }
        return lower;
    }

    QVariant readReal(const Marker& marker) {
        const quint64 size = quint64{1} << marker.low;
        if ((size != 4 && size != 8) || !isWithinObjects(marker.contents, size)) {
            fail(marker.position, "expected a real of 4 or 8 bytes");
            return {};
        }
        const quint64 bits = numberAt(marker.contents, size);
        return size == 8 ? std::bit_cast<double>(bits)
                         : double{std::bit_cast<float>(static_cast<quint32>(bits))};
    }

    QVariant readDate(const Marker& marker) {
        if (!isWithinObjects(marker.contents, 8)) {
            fail(marker.position, "expected a date of 8 bytes");
            return {};
        }
        constexpr double kMillennia = 1e15; // in milliseconds: 31 of them, what qint64 holds well
        const double milliseconds =
            std::round(std::bit_cast<double>(numberAt(marker.contents, 8)) * 1000);
        if (std::abs(milliseconds) < kMillennia) {
            const QDateTime date = QDateTime::fromMSecsSinceEpoch(
                kReferenceDate + static_cast<qint64>(milliseconds), kUTC);
            if (isInRange(date)) {
                return date;
            }
        }
        fail(marker.position, "expected a date within the years 1 to 9999");
        return {};
    }

    QVariant readData(const Marker& marker) {
        const std::optional<Span> span = readSpan(marker, 1);
        return span ? QVariant(contentsOf(*span, 1).toByteArray()) : QVariant();
    }

    QVariant readASCIIText(const Marker& marker) {
        const std::optional<Span> span = readSpan(marker, 1);
        if (!span) {
            return {};
        }
        const QByteArrayView text = contentsOf(*span, 1);
        const auto isASCII = [](char byte) { return static_cast<std::uint8_t>(byte) < 0x80; };
        if (!std::all_of(text.begin(), text.end(), isASCII)) {
            fail(marker.position, "expected ASCII text");
            return {};
        }
        return QString::fromLatin1(text);
    }

    QVariant readUTF16Text(const Marker& marker) {
        const std::optional<Span> span = readSpan(marker, sizeof(char16_t));
        if (!span) {
            return {};
        }
        QString text(static_cast<qsizetype>(span->count), Qt::Uninitialized);
        qFromBigEndian<char16_t>(contentsOf(*span, sizeof(char16_t)).data(), text.size(),
                                 text.data());
        if (!text.isValidUtf16()) {
            fail(marker.position, "expected UTF-16 text");
            return {};
        }
        return text;
    }

    // Where the contents of a marker with a count are, held against the bytes there are. Objects do
    // not share bytes: a list of many that all claim the same ones would grow by being read.
    std::optional<Span> readSpan(const Marker& marker, quint64 unitSize) {
        Span span{marker.contents, marker.low};
        if (marker.low == kLongCount && !readLongCount(span)) {
            return std::nullopt;
        }
        if (span.count > (objectsEnd_ - span.position) / unitSize) {
            fail(marker.position, "expected fewer contents than there are bytes");
            return std::nullopt;
        }
        contentsRead_ += span.count * unitSize;
        if (contentsRead_ > objectsEnd_) {
            fail(marker.position, "expected objects that share no bytes");
            return std::nullopt;
        }
        return span;
    }

    bool readLongCount(Span& span) {
        const quint64 position = span.position;
        if (!isWithinObjects(position, 1) || (byteAt(position) & 0xF0) != kInteger) {
            return fail(position, "expected a count");
        }
        const auto low = static_cast<std::uint8_t>(byteAt(position) & 0x0F);
        const std::optional<qint64> count = integerAt({kInteger, low, position, position + 1});
        if (!count || *count < 0) {
            return fail(position, "expected a count");
        }
        span = {position + 1 + (quint64{1} << low), static_cast<quint64>(*count)};
        return true;
    }

    QByteArrayView contentsOf(const Span& span, qsizetype unitSize) const {
        return bytes_.sliced(static_cast<qsizetype>(span.position),
                             static_cast<qsizetype>(span.count) * unitSize);
    }

    bool isWithinObjects(quint64 position, quint64 size) const {
        return position <= objectsEnd_ && size <= objectsEnd_ - position;
    }

    quint64 positionOf(quint64 number) const {
        return numberAt(offsetTable_ + number * offsetSize_, offsetSize_);
    }

    quint64 numberAt(quint64 position, quint64 size) const {
        quint64 number = 0;
        for (quint64 i = 0; i < size; ++i) {
            number = number << 8 | byteAt(position + i);
        }
        return number;
    }

    std::uint8_t byteAt(quint64 position) const {
        return static_cast<std::uint8_t>(bytes_.at(static_cast<qsizetype>(position)));
    }

    // The first failure stands.
    bool fail(quint64 position, const char* text,
              PropertyListErrorCode code = PropertyListErrorCode::malformed) {
        if (failure_.isEmpty()) {
            failure_ = QString::fromUtf8(text);
            failurePosition_ = position;
            code_ = code;
        }
        return false;
    }

    const QByteArrayView bytes_;
    quint64 offsetSize_ = 0;
    quint64 referenceSize_ = 0;
    quint64 objectCount_ = 0;
    quint64 topObject_ = 0;
    quint64 offsetTable_ = 0;
    quint64 objectsEnd_ = 0;
    std::vector<Object> objects_;
    quint64 contentsRead_ = 0; // bytes, of all objects so far
    quint64 references_ = 0;   // of all containers so far
    int depth_ = 0;
    QString failure_;
    quint64 failurePosition_ = 0;
    PropertyListErrorCode code_ = PropertyListErrorCode::malformed;
};

} // namespace

std::optional<QVariant> readBinary(QByteArrayView bytes, std::optional<Error>* error) {
    return Reader(bytes).read(error);
}

} // namespace navrel::propertylist
