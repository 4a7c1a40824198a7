#include "web/PrivateFile.h"

#include "transport/OwnedDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
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

/// Reads to the end, which may be elsewhere than was announced: files grow while they are read.
std::optional<std::string> readAll(int descriptor, std::size_t limit, std::size_t announced) {
    std::string bytes(std::min(announced, limit) + 1, '\0');
    std::size_t size = 0;
    for (;;) {
        const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
        if (count < 0 || size > limit) {
            return std::nullopt;
        }
        if (count == 0) {
            bytes.resize(size);
            return bytes;
        }
        if (size == bytes.size()) {
            bytes.resize(std::min(2 * size, limit + 1));
        }
    }
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
    // Not blocking: a pipe in the file's place would otherwise wait for its other end.
    const OwnedDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!file.isValid() || ::fstat(file.value(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const auto announced = static_cast<std::uintmax_t>(status.st_size);
    return announced <= limit ? readAll(file.value(), limit, announced) : std::nullopt;
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
