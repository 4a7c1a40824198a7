#pragma once

#include "scanning/SourceFileBuffer.h"
#include "support/files/RegularFile.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <memory>
#include <optional>

namespace navrel {

/// One shortcut comment that a scan has found.
struct ShortcutRecord {
    QByteArray shortcut; ///< the comment's text, UTF-8
    qint32 line;         ///< 1-based
    QByteArray path;     ///< the reader's `filePath`
};

/// Reads a text file line by line, once from beginning to end, and keeps no more of it in memory
/// than a line and a buffer. One thread at a time.
///
/// The program itself reads sources whole and scans them in one pass (SourceFileScanner.h), which
/// is faster. This reader is for callers that need lines; tests compare that pass with its scans.
class QWFileReader {
public:
    /// Returns a reader at the beginning of the file, or null if `RegularFile::open` fails.
    static std::unique_ptr<QWFileReader> initWithFilePath(QByteArray path);

    /// The path given at creation, unchanged.
    const QByteArray& filePath() const { return filePath_; }
    /// Byte offset at which the next line starts.
    quint64 currentOffset() const { return currentOffset_; }
    /// Length of the file in bytes at creation; never measured again.
    quint64 totalFileLength() const { return fileHandle_.size(); }

    /// The text that ends a line, as UTF-8; a line feed at first.
    const QByteArray& lineDelimiter() const { return lineDelimiter_; }
    void setLineDelimiter(QByteArray delimiter) { lineDelimiter_ = std::move(delimiter); }
    /// The size, in bytes, of the chunks in which a line is searched for the delimiter; 10 at
    /// first. The first chunk starts with the line, and each is searched by itself. Deliberately, a
    /// chunk that ends within a delimiter of several bytes also ends the line, with half a
    /// delimiter (see `rangeOfData_qw`). With a delimiter of one byte, the size makes no
    /// difference.
    quint64 chunkSize() const { return chunkSize_; }
    void setChunkSize(quint64 size) { chunkSize_ = size; }

    /// The next line as UTF-8, with its delimiter, which only the last line may lack. Nil at the
    /// end of the file and, deliberately, for a line that is not valid UTF-8, so that every loop
    /// over the lines ends there. A line of more than `kLargestSource` bytes (including the rest of
    /// its last chunk) counts as the end of the file, and so does a read without bytes, since the
    /// file was truncated. The bytes are valid until the next call on the reader.
    std::optional<QByteArrayView> readLine();

    /// As `readLine`, without white space and line breaks at both ends.
    std::optional<QByteArrayView> readTrimmedLine();

    /// Calls the block with each line that `readLine` returns, until that is nil or the block sets
    /// `stop`.
    using LineBlock = std::function<void(QByteArrayView line, bool& stop)>;
    void enumerateLinesUsingBlock(const LineBlock& block);

    /// Finds the first line that declares the file's own class, calls the block with the superclass
    /// there (which may be empty), and reads no further. Does not call it if there is no such line.
    /// The file's own class has its base name, which is put into the pattern unescaped,
    /// deliberately: special characters in it are those of a pattern. Ends without a superclass if
    /// that makes no valid pattern, if it takes more steps than `SuperclassBudget` allows one
    /// header, or if ICU runs out of memory.
    using SuperclassBlock = std::function<void(QByteArrayView superclass)>;
    void findSuperclassUsingBlock(const SuperclassBlock& block);
    /// As `findSuperclassUsingBlock`, with the same pattern.
    void findSuperclassForSwiftUsingBlock(const SuperclassBlock& block);

    /// Calls the block for each line that holds a shortcut comment, with the record and false;
    /// after the last line with nil and true.
    using ShortcutBlock =
        std::function<void(const std::optional<ShortcutRecord>& record, bool finished)>;
    void findShortcutsUsingBlock(const ShortcutBlock& block);

private:
    QWFileReader(QByteArray path, RegularFile file);

    quint64 bufferEnd() const { return bufferStart_ + bufferedCount_; }
    QByteArrayView buffered(quint64 from, quint64 to) const {
        return {buffer_.get() + (from - bufferStart_), static_cast<qsizetype>(to - from)};
    }
    bool isInsideCharacter(quint64 offset) const;
    bool fillBuffer();
    void makeRoomInBuffer();
    bool holdsTooMuch() const;
    void extendValidity();
    bool isValidLine(quint64 end) const;
    quint64 endOfLastChunk() const;
    quint64 findEndOfLine();
    std::optional<quint64> findDelimiterByte(quint64 from, quint64 to) const;
    quint64 findEndOfLineByByte();
    quint64 findEndOfLineByChunk();

    QByteArray filePath_;
    RegularFile fileHandle_;
    quint64 currentOffset_ = 0;
    QByteArray lineDelimiter_;
    quint64 chunkSize_;
    bool ended_ = false;

    // Offsets are those of the file. The buffer holds the bytes from `bufferStart_` on.
    std::unique_ptr<char[]> buffer_;
    std::size_t capacity_;
    quint64 bufferStart_ = 0;
    std::size_t bufferedCount_ = 0;
    /// Whether the last read returned no bytes.
    bool exhausted_ = false;
    /// The bytes from the line's start to here are known to be UTF-8. Always between characters.
    quint64 validEnd_ = 0;
};

} // namespace navrel
