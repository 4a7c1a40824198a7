#include "scanning/QWFileReader.h"

#include "scanning/QWAdditions.h"
#include "scanning/ShortcutExpression.h"
#include "scanning/SourceFindings.h"
#include "scanning/SuperclassSearch.h"
#include "support/text/UTF8.h"

#include <QChar>
#include <QString>
#include <QtNumeric>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A line is looked for in chunks of a few bytes, which shows only with a delimiter of several
// bytes; the bytes themselves come from a buffer that serves many lines with one read. A line lies
// in the buffer as a whole: where it does not fit, the buffer moves along the file and, if need be,
// grows.
namespace navrel {

namespace {

constexpr quint64 kDefaultChunkSize = 10;
constexpr quint64 kBufferSize = quint64(64) * 1024;

bool isContinuation(char byte) {
    return (static_cast<uchar>(byte) & 0xC0U) == 0x80;
}

/// The first place of a byte, or null. Most lines end within 64 bytes, where calling memchr takes
/// longer than looking at all of them.
const char* findByte(QByteArrayView text, char byte) {
    const char* at = text.data();
#if defined(__SSE2__)
    constexpr int kNear = 64;
    constexpr int kLanes = 16;
    if (text.size() >= kNear) {
        quint64 places = 0;
        for (int lane = 0; lane < kNear; lane += kLanes) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + lane));
            const int equal = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte)));
            places |= quint64(static_cast<quint32>(equal)) << unsigned(lane);
        }
        if (places != 0) {
            return at + std::countr_zero(places);
        }
        at += kNear;
    }
#endif
    const auto size = static_cast<std::size_t>(text.end() - at);
    return static_cast<const char*>(std::memchr(at, byte, size));
}

bool isWhitespaceOrNewline(QChar character) {
    switch (character.category()) {
    case QChar::Separator_Space:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return (character >= u'\t' && character <= u'\r') || character == QChar(0x85);
    }
}

/// The white space of several bytes that a line can begin or end with lies in UTF-16's first plane,
/// so units are enough to decide by.
QByteArrayView trimmed(QByteArrayView line) {
    const QString text = decodeUTF8(line).value_or(QString());
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isWhitespaceOrNewline(text[begin])) {
        ++begin;
    }
    while (end > begin && isWhitespaceOrNewline(text[end - 1])) {
        --end;
    }
    const auto lengthInUTF8 = [&text](qsizetype from, qsizetype count) {
        return QStringView(text).sliced(from, count).toUtf8().size();
    };
    return line.sliced(lengthInUTF8(0, begin), lengthInUTF8(begin, end - begin));
}

} // namespace

std::unique_ptr<QWFileReader> QWFileReader::initWithFilePath(QByteArray path) {
    std::optional<RegularFile> file = RegularFile::open(path);
    if (!file) {
        return nullptr;
    }
    return std::unique_ptr<QWFileReader>(new QWFileReader(std::move(path), *std::move(file)));
}

QWFileReader::QWFileReader(QByteArray path, RegularFile file)
    : filePath_(std::move(path)), fileHandle_(std::move(file)), lineDelimiter_("\n"),
      chunkSize_(kDefaultChunkSize),
      // A small file is read at once: one byte more tells that nothing follows.
      capacity_(std::min(kBufferSize, fileHandle_.size() + 1)) {
    buffer_ = std::make_unique_for_overwrite<char[]>(capacity_);
}

/// Drops what lies before the current line; doubles the buffer where the line fills it.
void QWFileReader::makeRoomInBuffer() {
    const char* const line = buffer_.get() + (currentOffset_ - bufferStart_);
    bufferedCount_ -= currentOffset_ - bufferStart_;
    bufferStart_ = currentOffset_;
    if (bufferedCount_ < capacity_) {
        std::memmove(buffer_.get(), line, bufferedCount_);
        return;
    }
    auto larger = std::make_unique_for_overwrite<char[]>(capacity_ * 2);
    std::memcpy(larger.get(), line, bufferedCount_);
    buffer_ = std::move(larger);
    capacity_ *= 2;
}

bool QWFileReader::holdsTooMuch() const {
    return bufferEnd() - currentOffset_ > quint64(kLargestSource);
}

/// Reads on behind what is buffered. False at the end of the file, and where the current line is
/// too long already.
bool QWFileReader::fillBuffer() {
    if (holdsTooMuch()) {
        return false;
    }
    makeRoomInBuffer();
    const qsizetype count = fileHandle_.readAt(bufferEnd(), buffer_.get() + bufferedCount_,
                                               qsizetype(capacity_ - bufferedCount_));
    bufferedCount_ += static_cast<std::size_t>(count);
    exhausted_ = count == 0;
    extendValidity();
    return !exhausted_;
}

/// Follows the valid text to the end of the buffer, to a character that the buffer cuts off (the
/// next reading goes on there), or to an invalid sequence.
void QWFileReader::extendValidity() {
    validEnd_ = std::max(validEnd_, currentOffset_);
    validEnd_ += static_cast<quint64>(validUTF8Length(buffered(validEnd_, bufferEnd())));
}

/// Only what is known to be UTF-8 has characters: a stray byte behind a line is none of its own.
inline bool QWFileReader::isInsideCharacter(quint64 offset) const {
    return offset < validEnd_ && isContinuation(buffer_[offset - bufferStart_]);
}

inline bool QWFileReader::isValidLine(quint64 end) const {
    return end <= validEnd_ && !isInsideCharacter(currentOffset_) && !isInsideCharacter(end);
}

/// The end of the chunk that reaches the measured length of the file; past it where the file has
/// grown, since the last chunk is read in full.
quint64 QWFileReader::endOfLastChunk() const {
    if (chunkSize_ == 0) {
        return currentOffset_;
    }
    const quint64 remaining = totalFileLength() - currentOffset_;
    const quint64 chunks = remaining / chunkSize_ + (remaining % chunkSize_ == 0 ? 0 : 1);
    quint64 end = 0;
    const bool overflows =
        qMulOverflow(chunks, chunkSize_, &end) || qAddOverflow(end, currentOffset_, &end);
    return overflows ? std::numeric_limits<quint64>::max() : end;
}

/// The place behind the first delimiter of one byte between two places of the buffer.
inline std::optional<quint64> QWFileReader::findDelimiterByte(quint64 from, quint64 to) const {
    const QByteArrayView part = buffered(from, to);
    const char* const found = findByte(part, lineDelimiter_[0]);
    if (found == nullptr) {
        return std::nullopt;
    }
    return from + static_cast<quint64>(found - part.data()) + 1;
}

/// With a delimiter of one byte, chunks show only behind the measured length of the file.
quint64 QWFileReader::findEndOfLineByByte() {
    const quint64 limit = endOfLastChunk();
    quint64 searched = currentOffset_;
    for (;;) {
        const quint64 available = std::max(searched, std::min(bufferEnd(), limit));
        if (const auto end = findDelimiterByte(searched, available)) {
            return *end;
        }
        searched = available;
        if (searched == limit || !fillBuffer()) {
            return searched;
        }
    }
}

quint64 QWFileReader::findEndOfLineByChunk() {
    const quint64 chunkSize = std::min(chunkSize_, quint64(kLargestSource));
    quint64 chunkStart = currentOffset_;
    while (chunkStart < totalFileLength()) {
        while (bufferEnd() < chunkStart + chunkSize && fillBuffer()) {
        }
        const quint64 chunkEnd = std::min(bufferEnd(), chunkStart + chunkSize);
        const ByteRange found = rangeOfData_qw(buffered(chunkStart, chunkEnd), lineDelimiter_);
        if (found.location != kNotFound) {
            return std::min(chunkEnd, chunkStart + found.location + found.length);
        }
        if (chunkEnd == chunkStart) {
            break;
        }
        chunkStart = chunkEnd;
    }
    return chunkStart;
}

quint64 QWFileReader::findEndOfLine() {
    if (lineDelimiter_.size() != 1) {
        return findEndOfLineByChunk();
    }
    // Most lines lie in the buffer as a whole.
    const quint64 available = std::min(bufferEnd(), totalFileLength());
    if (currentOffset_ < available) {
        if (const auto end = findDelimiterByte(currentOffset_, available)) {
            return *end;
        }
    }
    return findEndOfLineByByte();
}

std::optional<QByteArrayView> QWFileReader::readLine() {
    if (ended_ || currentOffset_ >= totalFileLength()) {
        return std::nullopt;
    }
    const quint64 end = findEndOfLine();
    const bool isTooLong = end - currentOffset_ > quint64(kLargestSource);
    ended_ = isTooLong || (exhausted_ && end == bufferEnd()) || end == currentOffset_;
    if (isTooLong || end == currentOffset_) {
        return std::nullopt;
    }
    if (validEnd_ < currentOffset_) { // an invalid line lies behind
        extendValidity();
    }
    const bool isValid = isValidLine(end);
    const QByteArrayView line = buffered(currentOffset_, end);
    currentOffset_ = end;
    return isValid ? std::optional(line) : std::nullopt;
}

std::optional<QByteArrayView> QWFileReader::readTrimmedLine() {
    const std::optional<QByteArrayView> line = readLine();
    return line ? std::optional(trimmed(*line)) : std::nullopt;
}

void QWFileReader::enumerateLinesUsingBlock(const LineBlock& block) {
    bool stop = false;
    while (!stop) {
        const std::optional<QByteArrayView> line = readLine();
        if (!line) {
            return;
        }
        block(*line, stop);
    }
}

void QWFileReader::findSuperclassUsingBlock(const SuperclassBlock& block) {
    SuperclassBudget budget;
    SuperclassSearch search(SourceName(filePath_).baseName().toByteArray(), budget);
    enumerateLinesUsingBlock([&](QByteArrayView line, bool& stop) {
        if (const auto superclass = search.superclassOnLine(line)) {
            block(*superclass);
        }
        stop = search.isOver();
    });
}

void QWFileReader::findSuperclassForSwiftUsingBlock(const SuperclassBlock& block) {
    findSuperclassUsingBlock(block);
}

void QWFileReader::findShortcutsUsingBlock(const ShortcutBlock& block) {
    ShortcutExpression expression;
    qint32 lineNumber = 1;
    enumerateLinesUsingBlock([&](QByteArrayView line, bool&) {
        if (auto text = expression.shortcutOnLine(line)) {
            block(ShortcutRecord{*std::move(text), lineNumber, filePath_}, false);
        }
        ++lineNumber;
    });
    block(std::nullopt, true);
}

} // namespace navrel
