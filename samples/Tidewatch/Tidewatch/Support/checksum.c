#include "checksum.h"

// MARK: - Checksum

// navrel: Checksum of the download
uint32_t tide_checksum(const uint8_t *bytes, size_t length) {
    uint32_t sum = 2166136261u;
    for (size_t i = 0; i < length; i++) {
        sum = (sum ^ bytes[i]) * 16777619u;
    }
    return sum;
}
