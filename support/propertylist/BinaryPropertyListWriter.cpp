#include "support/propertylist/BinaryPropertyList.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"

#include <QDateTime>
#include <QHash>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <vector>

namespace navrel {

namespace propertylist {

namespace {

/// Writes a list in two steps: the values become a flat array of objects, in which equal strings
/// and integers are one object; then, when their number and so the size of a reference is known,
/// the objects become bytes.
class Writer {
public:
    std::optional<UnwritableValue> add(const QVariant& list) {
        std::optional<UnwritableValue> failure;
        addValue(list, failure);
        return failure;
    }

    QByteArray bytes() {
        referenceSize_ = sizeOf(objects_.size());
        bytes_ = QByteArrayLiteral("bplist00");
        std::vector<quint64> offsets;
        offsets.reserve(objects_.size());
        for (const Object& object : objects_) {
            offsets.push_back(static_cast<quint64>(bytes_.size()));
            append(object);
        }
        appendOffsets(offsets);
        return bytes_;
    }

private:
    using Failure = std::optional<UnwritableValue>;

    struct Object {
        QVariant value;                  // a scalar, or an empty container
        std::vector<quint32> references; // a container's; of a dictionary, the keys come first
    };

    quint32 addValue(const QVariant& value, Failure& failure) {
        switch (value.typeId()) {
        case QMetaType::QVariantMap:
        case QMetaType::QVariantList:
            return addContainer(value, failure);
        case QMetaType::QString:
            return addString(value.toString(), failure);
        case QMetaType::QByteArray:
        case QMetaType::Double:
        case QMetaType::Float:
            return addObject(value);
        case QMetaType::QDateTime:
            if (!isInRange(value.toDateTime())) {
                failure = UnwritableValue(QStringLiteral("a date outside the years 1 to 9999"));
            }
            return addObject(value);
        default:
            return addInteger(value, failure);
        }
    }

    quint32 addObject(const QVariant& value) {
        objects_.push_back({value, {}});
        return static_cast<quint32>(objects_.size() - 1);
    }

    quint32 addString(const QString& string, Failure& failure) {
        if (!string.isValidUtf16()) {
            failure = UnwritableValue(QStringLiteral("text that is not Unicode"));
            return 0;
        }
        const auto known = strings_.constFind(string);
        return known != strings_.cend() ? *known : *strings_.insert(string, addObject(string));
    }

    quint32 addInteger(const QVariant& value, Failure& failure) {
        const std::optional<qlonglong> integer = integerOf(value);
        if (!integer) {
            failure = UnwritableValue::ofType(value);
            return 0;
        }
        const auto known = integers_.constFind(*integer);
        return known != integers_.cend() ? *known
                                         : *integers_.insert(*integer, addObject(*integer));
    }

    quint32 addContainer(const QVariant& value, Failure& failure) {
        if (depth_ == kMaxPropertyListDepth) {
            failure = UnwritableValue(QStringLiteral("nested too deeply"),
                                      PropertyListErrorCode::tooLarge);
            return 0;
        }
        ++depth_;
        const bool isArray = value.typeId() == QMetaType::QVariantList;
        const quint32 number =
            addObject(isArray ? QVariant(QVariantList()) : QVariant(QVariantMap()));
        std::vector<quint32> references =
            isArray ? addElements(value.toList(), failure) : addEntries(value.toMap(), failure);
        objects_[number].references = std::move(references);
        --depth_;
        return number;
    }

    std::vector<quint32> addElements(const QVariantList& list, Failure& failure) {
        std::vector<quint32> references;
        references.reserve(static_cast<std::size_t>(list.size()));
        for (qsizetype i = 0; i < list.size() && !failure; ++i) {
            references.push_back(addValue(list.at(i), failure));
            if (failure) {
                failure = std::move(*failure).inElement(i);
            }
        }
        return references;
    }

    std::vector<quint32> addEntries(const QVariantMap& map, Failure& failure) {
        std::vector<quint32> references;
        references.reserve(static_cast<std::size_t>(map.size()) * 2);
        for (auto entry = map.keyBegin(); entry != map.keyEnd() && !failure; ++entry) {
            references.push_back(addString(*entry, failure));
            if (failure) {
                failure = std::move(*failure).inEntry(*entry);
            }
        }
        for (auto entry = map.cbegin(); entry != map.cend() && !failure; ++entry) {
            references.push_back(addValue(entry.value(), failure));
            if (failure) {
                failure = std::move(*failure).inEntry(entry.key());
            }
        }
        return references;
    }

    void append(const Object& object) {
        switch (object.value.typeId()) {
        case QMetaType::QVariantMap:
            appendContainer(kDictionary, object.references.size() / 2, object.references);
            break;
        case QMetaType::QVariantList:
            appendContainer(kArray, object.references.size(), object.references);
            break;
        case QMetaType::QString:
            appendString(object.value.toString());
            break;
        case QMetaType::QByteArray:
            appendMarker(kData, static_cast<quint64>(object.value.toByteArray().size()));
            bytes_ += object.value.toByteArray();
            break;
        case QMetaType::QDateTime:
            bytes_ += static_cast<char>(kDate);
            appendReal(static_cast<double>(object.value.toDateTime().toMSecsSinceEpoch() -
                                           kReferenceDate) /
                       1000);
            break;
        case QMetaType::LongLong:
            appendInteger(object.value.toLongLong());
            break;
        default:
            bytes_ += static_cast<char>(kReal | 3);
            appendReal(object.value.toDouble());
        }
    }

    void appendContainer(BinaryMarker kind, std::size_t count,
                         const std::vector<quint32>& references) {
        appendMarker(kind, count);
        for (const quint32 reference : references) {
            appendNumber(reference, referenceSize_);
        }
    }

    void appendString(const QString& string) {
        const auto isASCII = [](QChar character) { return character.unicode() < 0x80; };
        const auto count = static_cast<quint64>(string.size());
        if (std::all_of(string.begin(), string.end(), isASCII)) {
            appendMarker(kASCIIText, count);
            bytes_ += string.toLatin1();
            return;
        }
        appendMarker(kUTF16Text, count);
        QByteArray units(string.size() * qsizetype{sizeof(char16_t)}, Qt::Uninitialized);
        qToBigEndian<char16_t>(string.utf16(), string.size(), units.data());
        bytes_ += units;
    }

    // Negative integers take 8 bytes, since shorter ones have no sign.
    void appendInteger(qlonglong integer) {
        const auto bits = static_cast<quint64>(integer);
        const int size = sizeOf(bits);
        bytes_ += static_cast<char>(kInteger | std::countr_zero(static_cast<unsigned>(size)));
        appendNumber(bits, size);
    }

    void appendReal(double real) { appendNumber(std::bit_cast<quint64>(real), 8); }

    void appendMarker(BinaryMarker kind, quint64 count) {
        if (count < kLongCount) {
            bytes_ += static_cast<char>(kind | count);
            return;
        }
        bytes_ += static_cast<char>(kind | kLongCount);
        appendInteger(static_cast<qlonglong>(count));
    }

    void appendOffsets(const std::vector<quint64>& offsets) {
        const auto tablePosition = static_cast<quint64>(bytes_.size());
        const int offsetSize = sizeOf(tablePosition);
        for (const quint64 offset : offsets) {
            appendNumber(offset, offsetSize);
        }
        appendNumber(0, 6);
        appendNumber(static_cast<quint64>(offsetSize), 1);
        appendNumber(static_cast<quint64>(referenceSize_), 1);
        appendNumber(objects_.size(), 8);
        appendNumber(0, 8); // the list itself is the first object
        appendNumber(tablePosition, 8);
    }

    void appendNumber(quint64 number, int size) {
        for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) {
            bytes_ += static_cast<char>(number >> shift);
        }
    }

    // The bytes that hold a number: 1, 2, 4 or 8.
    static int sizeOf(quint64 number) {
        const int bits = std::bit_width(number);
        return bits <= 8 ? 1 : bits <= 16 ? 2 : bits <= 32 ? 4 : 8;
    }

    std::vector<Object> objects_;
    QHash<QString, quint32> strings_;
    QHash<qlonglong, quint32> integers_;
    int depth_ = 0;
    int referenceSize_ = 1;
    QByteArray bytes_;
};

} // namespace

} // namespace propertylist

std::optional<QByteArray> binaryDataWithPropertyList(const QVariant& propertyList,
                                                     std::optional<Error>* error) {
    propertylist::Writer writer;
    if (const auto failure = writer.add(propertyList)) {
        failure->reportTo(error);
        return std::nullopt;
    }
    return writer.bytes();
}

} // namespace navrel
