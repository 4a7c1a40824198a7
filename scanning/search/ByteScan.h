#pragma once

#include <QByteArrayView>

/// Two questions about all bytes of a text, answered with the best instructions that the processor
/// has. Any thread.
namespace navrel {

/// How many line feeds stand between two places.
quint32 countLineFeeds(const char* begin, const char* end);

/// How many bytes at the beginning are known to be ASCII: all of them, or some before the first one
/// that is not.
qsizetype asciiPrefixLength(QByteArrayView text);

/// The same, each in one way.
quint32 countLineFeedsPortably(const char* begin, const char* end);
qsizetype asciiPrefixLengthPortably(const char* text, qsizetype size);
#if defined(NAVREL_X86_SEARCHES)
quint32 countLineFeedsWithAVX2(const char* begin, const char* end);
qsizetype asciiPrefixLengthWithAVX2(const char* text, qsizetype size);
#endif

} // namespace navrel
