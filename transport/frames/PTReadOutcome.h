#pragma once

#include "support/core/Error.h"
#include "support/dispatch/DispatchData.h"
#include "transport/frames/PTFrame.h"

#include <QString>

#include <optional>

namespace navrel {

/// Domain of the one error of the protocol, code 0: a header that is truncated or has another
/// version.
extern const QString kPTProtocolErrorDomain;

// The outcome of a read, from the bytes and the errno value of its last delivery. No bytes and no
// errno value mean the end of the stream. Deliberately, only that delivery counts: a stream that
// ends within a frame ends as cleanly as one that ends between frames.

/// An error, or a header; the header of an error, and of the end of the stream, has type 0.
struct PTHeaderOutcome {
    std::optional<Error> error;
    PTFrameHeader header = {};
};
PTHeaderOutcome headerOutcome(const DispatchData& lastPiece, int errnoValue);

/// An error, or the payload's bytes in one piece; neither at the end of the stream.
struct PTPayloadOutcome {
    std::optional<Error> error;
    std::optional<DispatchData> contiguousData;
};
PTPayloadOutcome payloadOutcome(DispatchData lastPiece, int errnoValue);

} // namespace navrel
