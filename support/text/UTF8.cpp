#include "support/text/UTF8.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace navrel {

namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

/// Long enough that the loop over it becomes vector instructions, short enough that a text with an
/// occasional foreign character is still mostly skipped in blocks.
constexpr qsizetype kBlockSize = 256;

constexpr qsizetype kWordSize = sizeof(quint64);
constexpr quint64 kHighBits = 0x8080808080808080U;

quint64 wordAt(const char* bytes) {
    quint64 word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

bool isASCIIBlock(const char* block) {
    quint64 bits = 0;
    for (qsizetype offset = 0; offset < kBlockSize; offset += kWordSize) {
        bits |= wordAt(block + offset);
    }
    return (bits & kHighBits) == 0;
}

bool isContinuation(uchar byte) {
    return (byte & 0xC0U) == 0x80;
}

/// The length of a sequence by its first byte, and the range of the second byte that keeps
/// overlong forms, surrogates and values above U+10FFFF out. Length 0: no sequence begins so.
struct SequenceForm {
    qsizetype length;
    uchar secondFrom;
    uchar secondTo;
};

SequenceForm formOf(uchar first) {
    if (first < 0x80) {
        return {1, 0, 0};
    }
    if (first >= 0xC2 && first <= 0xDF) {
        return {2, 0x80, 0xBF};
    }
    if (first >= 0xE0 && first <= 0xEF) {
        const uchar from = first == 0xE0 ? 0xA0 : 0x80;
        const uchar to = first == 0xED ? 0x9F : 0xBF;
        return {3, from, to};
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const uchar from = first == 0xF0 ? 0x90 : 0x80;
        const uchar to = first == 0xF4 ? 0x8F : 0xBF;
        return {4, from, to};
    }
    return {0, 0, 0};
}

/// The length of the valid sequence at the beginning of the bytes, or 0.
qsizetype sequenceLength(const char* bytes, qsizetype available) {
    const auto byteAt = [bytes](qsizetype index) { return static_cast<uchar>(bytes[index]); };
    const SequenceForm form = formOf(byteAt(0));
    if (form.length > available) {
        return 0;
    }
    if (form.length >= 2 && (byteAt(1) < form.secondFrom || byteAt(1) > form.secondTo)) {
        return 0;
    }
    for (qsizetype index = 2; index < form.length; ++index) {
        if (!isContinuation(byteAt(index))) {
            return 0;
        }
    }
    return form.length;
}

} // namespace

qsizetype validUTF8Length(QByteArrayView bytes) {
    const char* const text = bytes.data();
    const qsizetype size = bytes.size();
    qsizetype position = 0;
    while (position < size) {
        if (size - position >= kBlockSize && isASCIIBlock(text + position)) {
            position += kBlockSize;
            continue;
        }
        const qsizetype blockEnd = std::min(size, position + kBlockSize);
        while (position < blockEnd) {
            if (size - position >= kWordSize && (wordAt(text + position) & kHighBits) == 0) {
                position += kWordSize;
                continue;
            }
            const qsizetype length = sequenceLength(text + position, size - position);
            if (length == 0) {
                return position;
            }
            position += length;
        }
    }
    return size;
}

bool isValidUTF8(QByteArrayView bytes) {
    return validUTF8Length(bytes) == bytes.size();
}

std::optional<QString> decodeUTF8(QByteArrayView bytes) {
    // Not QString::fromUtf8, which replaces what is invalid and drops a byte order mark.
    QString text(bytes.size(), Qt::Uninitialized);
    auto* const units = reinterpret_cast<UChar*>(text.data());
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    if (bytes.size() > std::numeric_limits<int32_t>::max()) {
        return std::nullopt;
    }
    const auto size = static_cast<int32_t>(bytes.size());
    u_strFromUTF8(units, size, &length, bytes.data(), size, &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    text.truncate(length);
    return text;
}

QString shownUTF8(QByteArrayView bytes) {
    QString text = QString::fromUtf8(bytes);
    if (bytes.startsWith(kByteOrderMark)) {
        text.prepend(QChar(QChar::ByteOrderMark));
    }
    return text;
}

} // namespace navrel
