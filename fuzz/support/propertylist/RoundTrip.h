#pragma once

#include "support/core/Assertion.h"
#include "support/propertylist/PropertyList.h"

namespace navrel::fuzz {

/// Holds a writer to its word: what it writes is read, and written again is the same. Bytes are
/// compared, since a NaN is no value's equal. A list that the format cannot hold is not written.
template <typename Writer>
void checkRoundTrip(const QVariant& list, Writer write) {
    const std::optional<QByteArray> bytes = write(list, nullptr);
    if (!bytes) {
        return;
    }
    const std::optional<QVariant> again = propertyListWithData(*bytes);
    NAVREL_ASSERT(again.has_value());
    NAVREL_ASSERT(write(*again, nullptr) == bytes);
}

/// A failure always has a reason.
inline std::optional<QVariant> readOrExplain(QByteArrayView bytes) {
    std::optional<Error> error;
    std::optional<QVariant> list = propertyListWithData(bytes, &error);
    NAVREL_ASSERT(list.has_value() != error.has_value());
    return list;
}

} // namespace navrel::fuzz
