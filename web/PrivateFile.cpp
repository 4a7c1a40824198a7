#include "web/PrivateFile.h"

#include "support/files/OwnedDescriptor.h"
#include "support/files/RegularFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return ::fsync(descriptor) == 0;
}

/// Folders on the way are made as other programs make them, the last one for this user alone.
void makeFolderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::error_code ignored; // what cannot be made shows when the file is
    std::filesystem::create_directories(folder.parent_path(), ignored);
    ::mkdir(folder.c_str(), S_IRWXU);
}

} // namespace

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
    const auto bytes =
        RegularFile::content(QByteArray::fromStdString(path), static_cast<qsizetype>(limit));
    return bytes ? std::optional(bytes->toStdString()) : std::nullopt;
}

std::optional<Error> replacePrivateFile(const std::string& path, std::string_view bytes) {
    makeFolderOf(path);
    const std::string fresh = path + ".new";
    ::unlink(fresh.c_str());
    const OwnedDescriptor file(::open(
        fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!file.isValid() || !writeAll(file.value(), bytes) ||
        std::rename(fresh.c_str(), path.c_str()) != 0) {
        return Error::posix(errno);
    }
    return std::nullopt;
}

} // namespace navrel
