#include "transport/frames/PTReadOutcome.h"

#include <cerrno>
#include <utility>

namespace navrel {

const QString kPTProtocolErrorDomain = QStringLiteral("PTProtocolError");

PTPayloadOutcome payloadOutcome(DispatchData lastPiece, int errnoValue) {
    if (errnoValue != 0) {
        return {Error::posix(errnoValue), std::nullopt};
    }
    if (lastPiece.isEmpty()) {
        return {};
    }
    auto contiguous = std::move(lastPiece).contiguous();
    if (!contiguous) {
        return {Error::posix(ENOMEM), std::nullopt};
    }
    return {std::nullopt, std::move(contiguous)};
}

PTHeaderOutcome headerOutcome(const DispatchData& lastPiece, int errnoValue) {
    if (errnoValue != 0) {
        return {Error::posix(errnoValue)};
    }
    if (lastPiece.isEmpty()) {
        return {};
    }
    // Every header that was not cut off has arrived in one region.
    const auto contiguous = lastPiece.regions().size() == 1 ? std::nullopt : lastPiece.contiguous();
    if (!contiguous && lastPiece.regions().size() > 1) {
        return {Error::posix(ENOMEM)};
    }
    const DispatchData& bytes = contiguous ? *contiguous : lastPiece;
    const auto header = decodedFrameHeader({bytes.bytes(), static_cast<qsizetype>(bytes.size())});
    if (!header) {
        return {Error(kPTProtocolErrorDomain, 0)};
    }
    return {std::nullopt, *header};
}

} // namespace navrel
