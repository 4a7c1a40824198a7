#include "fuzz/support/propertylist/RoundTrip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace navrel;
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    if (const std::optional<QVariant> list = fuzz::readOrExplain(bytes)) {
        fuzz::checkRoundTrip(*list, XMLDataWithPropertyList);
        fuzz::checkRoundTrip(*list, binaryDataWithPropertyList);
    }
    return 0;
}
