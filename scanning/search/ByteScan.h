#pragma once

#include <QByteArrayView>

/// Two functions over all bytes of a text, which use the best instructions that the processor has.
/// Any thread.
namespace navrel {

/// How many line feeds are from `begin` up to `end`.
quint32 countLineFeeds(const char* begin, const char* end);

/// How many bytes at the beginning are ASCII: all of them, or a number up to the first that is not.
qsizetype asciiPrefixLength(QByteArrayView text);

/// The implementations of the above. Those with AVX2 must run only if hasAVX2().
quint32 countLineFeedsPortably(const char* begin, const char* end);
qsizetype asciiPrefixLengthPortably(const char* text, qsizetype size);
#if defined(NAVREL_X86_SEARCHES)
quint32 countLineFeedsWithAVX2(const char* begin, const char* end);
qsizetype asciiPrefixLengthWithAVX2(const char* text, qsizetype size);
#endif

} // namespace navrel
