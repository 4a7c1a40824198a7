#include "web/Secrets.h"

#include "support/core/Assertion.h"

#include <array>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <vector>

namespace navrel {

namespace {

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::size_t count) {
    Bytes bytes(count);
    // It fails only where the system has no randomness at all: nothing could be kept secret then.
    NAVREL_ASSERT(RAND_bytes(bytes.data(), static_cast<int>(count)) == 1);
    return bytes;
}

std::string hexOf(const unsigned char* bytes, std::size_t count) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * count);
    for (std::size_t index = 0; index < count; ++index) {
        text += kDigits[bytes[index] >> 4U];
        text += kDigits[bytes[index] & 15U];
    }
    return text;
}

} // namespace

std::string randomText(std::size_t bytes) {
    const Bytes secret = randomBytes(bytes);
    std::string text(4 * ((bytes + 2) / 3) + 1, '\0');
    auto* start = reinterpret_cast<unsigned char*>(text.data());
    const int length = EVP_EncodeBlock(start, secret.data(), static_cast<int>(bytes));
    text.resize(static_cast<std::size_t>(length));
    text.erase(text.find_last_not_of('=') + 1);
    for (char& character : text) {
        character = character == '+' ? '-' : character == '/' ? '_' : character;
    }
    return text;
}

std::string randomDigits(std::size_t digits) {
    constexpr unsigned char kFairBytes = 250; // the largest multiple of ten: above it, 0 to 5 win
    std::string text;
    while (text.size() < digits) {
        const unsigned char byte = randomBytes(1).front();
        if (byte < kFairBytes) {
            text += static_cast<char>('0' + byte % 10);
        }
    }
    return text;
}

std::string randomHex(std::size_t bytes) {
    return hexOf(randomBytes(bytes).data(), bytes);
}

std::string digestOf(std::string_view secret) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
    unsigned int size = 0;
    NAVREL_ASSERT(
        EVP_Digest(secret.data(), secret.size(), digest.data(), &size, EVP_sha256(), nullptr) == 1);
    return hexOf(digest.data(), size);
}

bool isSameSecret(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           CRYPTO_memcmp(left.data(), right.data(), left.size()) == 0;
}

} // namespace navrel
