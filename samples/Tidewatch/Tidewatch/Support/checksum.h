#ifndef CHECKSUM_H
#define CHECKSUM_H

#include <stddef.h>
#include <stdint.h>

/* Checksum of a downloaded tide table. */
uint32_t tide_checksum(const uint8_t *bytes, size_t length);

#endif
