#include "transport/frames/PTPayload.h"

#include "support/core/Error.h"
#include "support/core/Log.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/propertylist/PropertyList.h"

#include <utility>

namespace navrel {

DispatchData createReferencingDispatchData(const QByteArray& buffer) {
    // Released on the main queue: the job that does nothing holds the buffer until then.
    return DispatchData::borrowing(buffer.constData(), static_cast<size_t>(buffer.size()),
                                   DispatchQueue::mainQueue(), [buffer] {});
}

std::optional<DispatchData> createReferencingDispatchData(const QVariantMap& dictionary) {
    std::optional<Error> error;
    const auto bytes = binaryDataWithPropertyList(dictionary, &error);
    if (!bytes) {
        log(QStringLiteral("Failed to serialize property list: %1")
                .arg(error ? error->description() : QStringLiteral("(null)")));
        return std::nullopt;
    }
    return createReferencingDispatchData(*bytes);
}

std::optional<PTDispatchData>
dataWithContentsOfDispatchData(const std::optional<DispatchData>& data) {
    if (!data) {
        return std::nullopt;
    }
    auto contiguous = data->contiguous();
    if (!contiguous) {
        return std::nullopt;
    }
    return PTDispatchData(std::move(*contiguous));
}

std::optional<QVariant>
dictionaryWithContentsOfDispatchData(const std::optional<DispatchData>& data) {
    const auto buffer = dataWithContentsOfDispatchData(data);
    if (!buffer) {
        return std::nullopt;
    }
    return propertyListWithData(buffer->bytes());
}

} // namespace navrel
