#include "bench/support/propertylist/ByteClassFloor.h"

#include "support/propertylist/ASCIIScanner.h"

namespace navrel::bench {

unsigned sumOfByteClasses(const QByteArray& bytes) {
    unsigned sum = 0;
    for (const char byte : bytes) {
        sum += propertylist::kByteClasses[static_cast<std::uint8_t>(byte)];
    }
    return sum;
}

} // namespace navrel::bench
