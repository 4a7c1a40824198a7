#pragma once

#include "support/propertylist/PropertyList.h"

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <optional>
#include <utility>

// What the formats share about values and errors.
namespace navrel::propertylist {

/// The zone of every date, to make one with: Qt has a name of its own for it since 6.5, and
/// deprecates the older one.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
inline constexpr QTimeZone::Initialization kUTC = QTimeZone::UTC;
#else
inline constexpr Qt::TimeSpec kUTC = Qt::UTC;
#endif

/// Stores an error in `error`, unless that is null.
void report(std::optional<Error>* error, PropertyListErrorCode code, const QString& text);

/// Whether a date is in the years 1 to 9999, which every format can hold.
bool isInRange(const QDateTime& date);

/// The integer of a variant of any integer or boolean type (true is 1); nil for other types, and
/// for a number that does not fit.
std::optional<qlonglong> integerOf(const QVariant& value);

/// A value that a format cannot hold: "items[3].path: what is wrong with it". The callers add the
/// place step by step, from the inside outwards.
class UnwritableValue {
public:
    explicit UnwritableValue(QString reason,
                             PropertyListErrorCode code = PropertyListErrorCode::notWritable)
        : reason_(std::move(reason)), code_(code) {}

    /// For a variant that is not a property-list value at all.
    static UnwritableValue ofType(const QVariant& value);

    UnwritableValue inEntry(const QString& key) &&;
    UnwritableValue inElement(qsizetype index) &&;

    void reportTo(std::optional<Error>* error) const;

private:
    UnwritableValue in(const QString& step) &&;

    QString reason_;
    PropertyListErrorCode code_;
    QString place_;
};

} // namespace navrel::propertylist
