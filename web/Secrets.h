#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace navrel {

/// Secrets and their digests. Secrets are never logged, and never kept where a digest will do.

/// Random bytes in base64url, without padding: 16 bytes are 22 characters, 32 are 43.
std::string randomText(std::size_t bytes);

/// Decimal digits, each value as likely as the others.
std::string randomDigits(std::size_t digits);

/// Lower-case hexadecimal digits, two a random byte.
std::string randomHex(std::size_t bytes);

/// SHA-256 in lower-case hexadecimal digits.
std::string digestOf(std::string_view secret);

/// Compares in a time that depends on the lengths alone.
bool isSameSecret(std::string_view left, std::string_view right);

} // namespace navrel
