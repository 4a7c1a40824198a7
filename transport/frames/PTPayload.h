#pragma once

#include "transport/frames/PTDispatchData.h"

#include <QByteArray>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace navrel {

// Payloads of frames: converts byte arrays and property lists to dispatch data, and back.

/// Refers to the bytes of the array, without copying them. They are released by a job of the main
/// queue, after the last reference to the result is gone.
DispatchData createReferencingDispatchData(const QByteArray& buffer);

/// The dictionary as a binary property list, version 1.0. Nil, with the reason in the log, if it
/// holds a value that the format does not have.
std::optional<DispatchData> createReferencingDispatchData(const QVariantMap& dictionary);

/// The data in contiguous form, not copied if it already is. Nil for nil, and if there is no
/// memory.
std::optional<PTDispatchData>
dataWithContentsOfDispatchData(const std::optional<DispatchData>& data);

/// The property list, of any format, that the data holds. Nil for nil, and for bytes that are not a
/// property list. The value may be of any kind, as the peer sent it: callers must check that.
std::optional<QVariant>
dictionaryWithContentsOfDispatchData(const std::optional<DispatchData>& data);

} // namespace navrel
