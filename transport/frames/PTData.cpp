#include "transport/frames/PTData.h"

#include <utility>

namespace navrel {

PTData::PTData(std::optional<DispatchData>&& dispatchData, const char* data, size_t length)
    : dispatchData_(std::move(dispatchData)), data_(data), length_(length) {}

QString PTData::description() const {
    return QString::asprintf("<PTData: %p (%zu bytes)>", static_cast<const void*>(this), length_);
}

} // namespace navrel
