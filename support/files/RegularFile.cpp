#include "support/files/RegularFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

// The bytes read beyond the size at opening, to notice that the file has grown.
constexpr qsizetype kReadAhead = 4096;

ssize_t readOnce(int descriptor, quint64 offset, char* buffer, qsizetype length) {
    ssize_t count = 0;
    do {
        count = ::pread(descriptor, buffer, static_cast<std::size_t>(length),
                        static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

std::optional<RegularFile> RegularFile::open(const QByteArray& path) {
    if (path.contains('\0')) {
        return std::nullopt;
    }
    // Without O_NONBLOCK, opening a named pipe would wait for a writer.
    OwnedDescriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status = {};
    if (!file.isValid() || ::fstat(file.value(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return RegularFile(std::move(file), static_cast<quint64>(status.st_size));
}

std::optional<QByteArray> RegularFile::content(const QByteArray& path, qsizetype atMost) {
    const std::optional<RegularFile> file = open(path);
    return file ? file->readAll(atMost) : std::nullopt;
}

std::optional<struct stat> RegularFile::status() const {
    struct stat status = {};
    return ::fstat(descriptor_.value(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::optional<QByteArray> RegularFile::readAll(qsizetype atMost) const {
    if (size_ > static_cast<quint64>(atMost)) {
        return std::nullopt;
    }
    QByteArray bytes(static_cast<qsizetype>(size_) + kReadAhead, Qt::Uninitialized);
    qsizetype size = readAt(0, bytes.data(), bytes.size());
    while (size == bytes.size() && size <= atMost) {
        bytes.resize(2 * size);
        size += readAt(static_cast<quint64>(size), bytes.data() + size, bytes.size() - size);
    }
    if (size > atMost || static_cast<quint64>(size) < size_) {
        return std::nullopt;
    }
    bytes.truncate(size);
    return bytes;
}

qsizetype RegularFile::readAt(quint64 offset, char* buffer, qsizetype length) const {
    qsizetype total = 0;
    while (total < length) {
        const ssize_t count = readOnce(descriptor_.value(), offset + static_cast<quint64>(total),
                                       buffer + total, length - total);
        if (count <= 0) {
            break;
        }
        total += count;
    }
    return total;
}

} // namespace navrel
