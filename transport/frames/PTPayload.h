#pragma once

#include "transport/frames/PTDispatchData.h"

#include <QByteArray>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace navrel {

// Payloads of frames: byte arrays and property lists to dispatch data and back.

/// Refers to the array's own bytes, without copying them; they stay alive until a job of the main
/// queue lets go of them, after the last reference to the result has gone.
DispatchData createReferencingDispatchData(const QByteArray& buffer);

/// The dictionary as a binary property list, version 1.0. Nothing, with the reason in the log, for
/// a dictionary that has no such form.
std::optional<DispatchData> createReferencingDispatchData(const QVariantMap& dictionary);

/// The data's bytes in contiguous form, not copied if they already are. Nothing for no data, and
/// when there is no memory.
std::optional<PTDispatchData>
dataWithContentsOfDispatchData(const std::optional<DispatchData>& data);

/// The property list, of any format, that the data holds. Nothing for no data and for bytes that
/// are no property list. Nothing verifies that the value is a dictionary: a peer may send any.
std::optional<QVariant>
dictionaryWithContentsOfDispatchData(const std::optional<DispatchData>& data);

} // namespace navrel
