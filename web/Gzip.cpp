#include "web/Gzip.h"

#include "support/core/Assertion.h"

#include <zlib.h>

namespace navrel {

namespace {

constexpr int kWindowBits = 15;
constexpr int kGzipFormat = 16; // zlib's way of asking for it, added to the window's bits
constexpr int kMemoryLevel = 8;
/// Trees are repetitive: higher levels take twice the time for a hundredth of the size.
constexpr int kLevel = 5;

Bytef* inputOf(std::string_view bytes) {
    return reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data())); // zlib only reads it
}

} // namespace

std::string gzipped(std::string_view bytes) {
    z_stream stream = {};
    NAVREL_ASSERT(deflateInit2(&stream, kLevel, Z_DEFLATED, kWindowBits + kGzipFormat, kMemoryLevel,
                               Z_DEFAULT_STRATEGY) == Z_OK);
    std::string result(deflateBound(&stream, static_cast<uLong>(bytes.size())), '\0');
    stream.next_in = inputOf(bytes);
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int outcome = deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    NAVREL_ASSERT(outcome == Z_STREAM_END);
    return result;
}

std::optional<std::string> gunzipped(std::string_view bytes, std::size_t limit) {
    z_stream stream = {};
    NAVREL_ASSERT(inflateInit2(&stream, kWindowBits + kGzipFormat) == Z_OK);
    std::string result(limit, '\0');
    stream.next_in = inputOf(bytes);
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int outcome = inflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    inflateEnd(&stream);
    return outcome == Z_STREAM_END ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace navrel
