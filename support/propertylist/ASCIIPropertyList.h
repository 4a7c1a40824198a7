#pragma once

#include "support/propertylist/NodeArray.h"
#include "support/propertylist/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

// Parses the old-style ASCII format: text in, nodes out.
//
//   list        a value, with blanks before and behind
//   value       string | data | array | dictionary
//   string      one or more of A-Z a-z 0-9 _ $ / : . - | "…" | '…'
//   data        < hexadecimal digits in pairs, white space anywhere >
//   array       ( value , value , … ) the last comma may be missing
//   dictionary  { string = value ; string ; … } a key alone is its own value
//   blank       U+0009 to U+000D, U+0020, U+2028, U+2029, // to the end of the line, /* … */
//
// Blanks are allowed between any two tokens. A "/*" that is never closed runs to the end. Within
// quotes a backslash begins an escape: see `unescaped`.
namespace navrel::propertylist {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
inline constexpr std::string_view kASCIIWhiteSpace = " \t\n\v\f\r";

/// Why a text, of this format or of XML, is not a property list: what was expected, or exceeds a
/// limit, at a position (in bytes) of the text.
struct TextFailure {
    std::size_t position;
    PropertyListErrorCode code;
    const char* reason;
};

/// Appends the nodes of the list that the text is; their positions count from the beginning of the
/// text. Fails also if there are more values than `nodes` takes. After a failure the nodes must not
/// be used. Nil on success.
std::optional<TextFailure> parseASCII(std::string_view text, NodeArray& nodes);

/// As `parseASCII`, without vector instructions, as processors other than x86-64 run it.
std::optional<TextFailure> parseASCIIPortably(std::string_view text, NodeArray& nodes);

/// The position of the first byte that is not strict UTF-8; nil if there is none.
std::optional<TextFailure> checkUTF8(std::string_view text);

/// The UTF-8 text of a string with escapes. A backslash and one to three octal digits are a byte of
/// the NeXTSTEP encoding; \U and up to four hexadecimal digits are a UTF-16 unit, and two of them
/// may be a surrogate pair; \a \b \f \n \r \t \v are control characters; any other character after
/// a backslash is itself. Invalid ones (half of a pair, the NeXTSTEP bytes 0xFE and 0xFF) become
/// U+FFFD.
std::string unescaped(std::string_view text);

/// The bytes of a data value, from its hexadecimal digits; white space is skipped.
QByteArray dataOfDigits(std::string_view digits);

/// The failure as an error: "line L, column C: reason". Lines and columns count from 1, columns in
/// characters. `text` must be the one that was parsed.
Error errorOfFailure(const TextFailure& failure, std::string_view text);

} // namespace navrel::propertylist
