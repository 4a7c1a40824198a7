#pragma once

#include "scanning/SourceFileBuffer.h"
#include "support/files/RegularFile.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <memory>
#include <optional>

namespace navrel {

/// One shortcut comment, as a scan hands it on.
struct ShortcutRecord {
    QByteArray shortcut; ///< the comment's text, UTF-8
    qint32 line;         ///< 1-based
    QByteArray path;     ///< the reader's `filePath`
};

/// Reads a text file line by line, forward and once, without holding more of it than a line and a
/// buffer. One thread at a time.
///
/// The program itself reads sources whole and scans them in one pass (SourceFileScanner.h), which
/// is faster. This is the reader for callers that want lines, and the scans of lines are what the
/// tests hold that pass to.
class QWFileReader {
public:
    /// A reader at the beginning of the file, or null where `RegularFile::open` gives no file.
    static std::unique_ptr<QWFileReader> initWithFilePath(QByteArray path);

    /// The path given at creation, unchanged.
    const QByteArray& filePath() const { return filePath_; }
    /// Byte offset at which the next line starts.
    quint64 currentOffset() const { return currentOffset_; }
    /// Length of the file in bytes at creation; never measured again.
    quint64 totalFileLength() const { return fileHandle_.size(); }

    /// What ends a line, as UTF-8; a line feed at first.
    const QByteArray& lineDelimiter() const { return lineDelimiter_; }
    void setLineDelimiter(QByteArray delimiter) { lineDelimiter_ = std::move(delimiter); }
    /// The step, in bytes, in which lines are searched for the delimiter; 10 at first. Every line
    /// starts such a chunk, and each chunk is searched by itself: where a chunk ends within a
    /// delimiter of several bytes, the line deliberately ends there too, with half a delimiter (see
    /// `rangeOfData_qw`). With a delimiter of one byte the chunks do not show.
    quint64 chunkSize() const { return chunkSize_; }
    void setChunkSize(quint64 size) { chunkSize_ = size; }

    /// The next line as UTF-8, with its delimiter, which only the last line may lack. Nil at the
    /// end of the file, and for a line that is not valid UTF-8: deliberately the same, so that
    /// every loop over the lines ends at such a line. A line of more than `kLargestSource` bytes
    /// (with the chunk that it ends in) ends the file, and so does a read that gives no bytes,
    /// since the file was cut meanwhile. The bytes are valid until the next call on the reader.
    std::optional<QByteArrayView> readLine();

    /// The same without white space and line-break characters at both ends.
    std::optional<QByteArrayView> readTrimmedLine();

    /// Calls the block with each line as `readLine` gives it, until that gives nil or the block has
    /// set `stop`.
    using LineBlock = std::function<void(QByteArrayView line, bool& stop)>;
    void enumerateLinesUsingBlock(const LineBlock& block);

    /// Calls the block with the superclass that the first line declaring the file's own class names
    /// (it may be the empty text), and ends there; never calls it where no line does. The file's
    /// own class is named like the file: its base name is put into the pattern as it is,
    /// deliberately, so that special characters in it are the pattern's. No superclass is found
    /// where that makes no pattern, or one that takes longer than `SuperclassBudget` lets one
    /// header take; nor where ICU's memory does not suffice for a line. Then the lines behind are
    /// not read.
    using SuperclassBlock = std::function<void(QByteArrayView superclass)>;
    void findSuperclassUsingBlock(const SuperclassBlock& block);
    /// The same, with the same pattern.
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
    /// Whether the last reading gave no bytes.
    bool exhausted_ = false;
    /// What lies between a line's start and here is known to be UTF-8; ends between characters.
    quint64 validEnd_ = 0;
};

} // namespace navrel
