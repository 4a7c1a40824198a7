#pragma once

#include "support/propertylist/NodeArray.h"
#include "support/propertylist/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

// The old-style ASCII format: text in, nodes out.
//
//   list        a value, with blanks before and behind
//   value       string | data | array | dictionary
//   string      one or more of A-Z a-z 0-9 _ $ / : . - | "…" | '…'
//   data        < hexadecimal digits in pairs, white space anywhere >
//   array       ( value , value , … ) the last comma may be missing
//   dictionary  { string = value ; string ; … } a key alone is its own value
//   blank       U+0009 to U+000D, U+0020, U+2028, U+2029, // to the end of the line, /* … */
//
// Blanks may stand between any two tokens; a /* that is never closed runs to the end. Within quotes
// a backslash begins an escape: see unescaped.
namespace navrel::propertylist {

inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
inline constexpr std::string_view kASCIIWhiteSpace = " \t\n\v\f\r";

/// Why a text (of this format or of XML) is no list: what was expected (or is too much) at a
/// position of the text.
struct TextFailure {
    std::size_t position;
    PropertyListErrorCode code;
    const char* reason;
};

/// Appends the nodes of a list; positions count from the beginning of the text. A list of more
/// values than there may be nodes is a failure. On failure the nodes are of no use.
std::optional<TextFailure> parseASCII(std::string_view text, NodeArray& nodes);

/// The same without vector instructions: what other processors run.
std::optional<TextFailure> parseASCIIPortably(std::string_view text, NodeArray& nodes);

/// Where and that a text is not strict UTF-8; nothing for one that is.
std::optional<TextFailure> checkUTF8(std::string_view text);

/// The UTF-8 text of a string that holds escapes. One to three octal digits are a byte in the
/// NeXTSTEP encoding; \U and up to four hexadecimal digits are one UTF-16 unit, two of which make a
/// pair; \a \b \f \n \r \t \v are control characters; any other character stands for itself. What
/// is no character (a unit without its other half, the NeXTSTEP bytes 0xFE and 0xFF) gives U+FFFD.
std::string unescaped(std::string_view text);

/// The bytes that the digits of a data value stand for.
QByteArray dataOfDigits(std::string_view digits);

/// "line L, column C: reason", both from 1; columns count characters.
Error errorOfFailure(const TextFailure& failure, std::string_view text);

} // namespace navrel::propertylist
