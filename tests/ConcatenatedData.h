#pragma once

#include "support/dispatch/DispatchData.h"

namespace navrel {

/// The bytes of `first`, then those of `second`, in their regions.
inline DispatchData concatenated(const DispatchData& first, const DispatchData& second) {
    DispatchData both = first;
    both.append(second);
    return both;
}

} // namespace navrel
