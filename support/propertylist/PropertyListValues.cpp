#include "support/propertylist/PropertyListValues.h"

#include <QMetaType>

#include <limits>

namespace navrel::propertylist {

void report(std::optional<Error>* error, PropertyListErrorCode code, const QString& text) {
    if (error != nullptr) {
        *error = Error(kPropertyListErrorDomain, static_cast<qint64>(code), text);
    }
}

bool isInRange(const QDateTime& date) {
    const int year = date.toUTC().date().year(); // 0 for an invalid date
    return year >= 1 && year <= 9999;
}

std::optional<qlonglong> integerOf(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        if (value.toULongLong() <= static_cast<qulonglong>(std::numeric_limits<qlonglong>::max())) {
            return value.toLongLong();
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

UnwritableValue UnwritableValue::ofType(const QVariant& value) {
    if (!value.isValid()) {
        return UnwritableValue(QStringLiteral("nothing instead of a value"));
    }
    return UnwritableValue(
        QStringLiteral("a value of type %1").arg(QString::fromUtf8(value.typeName())));
}

UnwritableValue UnwritableValue::inEntry(const QString& key) && {
    return std::move(*this).in(key);
}

UnwritableValue UnwritableValue::inElement(qsizetype index) && {
    return std::move(*this).in(QStringLiteral("[%1]").arg(index));
}

UnwritableValue UnwritableValue::in(const QString& step) && {
    const bool needsDot = !place_.isEmpty() && !place_.startsWith(QLatin1Char('['));
    place_ = step + (needsDot ? QStringLiteral(".") : QString()) + place_;
    return std::move(*this);
}

void UnwritableValue::reportTo(std::optional<Error>* error) const {
    const QString place = place_.isEmpty() ? QStringLiteral("the list") : place_;
    report(error, code_, QStringLiteral("%1: %2").arg(place, reason_));
}

} // namespace navrel::propertylist
