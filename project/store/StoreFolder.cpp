#include "project/store/StoreFolder.h"

#include "support/text/FilePath.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace navrel {

namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
constexpr mode_t kUserAlone = S_IRWXU;

bool isThere(const QByteArray& path) {
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

} // namespace

std::optional<Error> makeStoreFolder(const QByteArray& path) {
    std::error_code error;
    std::filesystem::create_directories(deletingLastPathComponent(path).toStdString(), error);
    if (error) {
        return errorFromErrno(error.value());
    }
    if (::mkdir(path.constData(), kUserAlone) == 0) {
        // The umask may have taken the user's own rights.
        return errorFromErrno(::chmod(path.constData(), kUserAlone) == 0 ? 0 : errno);
    }
    if (errno != EEXIST) {
        return errorFromErrno(errno);
    }
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0) {
        return errorFromErrno(errno);
    }
    keepFromOthers(path);
    return std::nullopt;
}

void keepFromOthers(const QByteArray& path) {
    struct stat status = {};
    if (::stat(path.constData(), &status) == 0 && (status.st_mode & kOthers) != 0) {
        ::chmod(path.constData(), status.st_mode & kUserAlone);
    }
}

std::optional<QByteArray> moveAside(const QByteArray& path) {
    if (!isThere(path)) {
        return QByteArray();
    }
    QByteArray aside = path + ".found";
    for (int number = 2; isThere(aside); ++number) {
        aside = path + ".found-" + QByteArray::number(number);
    }
    return std::rename(path.constData(), aside.constData()) == 0 ? std::optional(aside)
                                                                 : std::nullopt;
}

} // namespace navrel
