#include "transport/frames/PTDispatchData.h"

#include "support/core/Assertion.h"

#include <utility>

namespace navrel {

PTDispatchData::PTDispatchData(DispatchData contiguous) : dispatchData_(std::move(contiguous)) {
    NAVREL_ASSERT(dispatchData_.regions().size() <= 1);
}

QByteArrayView PTDispatchData::bytes() const {
    return {dispatchData_.bytes(), static_cast<qsizetype>(dispatchData_.size())};
}

} // namespace navrel
