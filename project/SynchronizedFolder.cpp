#include "project/SynchronizedFolder.h"

#include <QCryptographicHash>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace navrel {

namespace {

struct Freer {
    void operator()(char* memory) const { std::free(memory); }
};

/// The path without links; empty where it leads nowhere.
QByteArray realPath(const QByteArray& path) {
    const std::unique_ptr<char, Freer> real(::realpath(path.constData(), nullptr));
    return real != nullptr ? QByteArray(real.get()) : QByteArray();
}

bool isAtOrBelow(const QByteArray& path, const QByteArray& folder) {
    return path == folder ||
           (path.startsWith(folder) && (folder.endsWith('/') || path.at(folder.size()) == '/'));
}

} // namespace

SynchronizedFolder::SynchronizedFolder(std::string_view groupIdentifier, QByteArray path)
    : groupIdentifier_(groupIdentifier.data(), static_cast<qsizetype>(groupIdentifier.size())),
      path_(std::move(path)) {}

QByteArray SynchronizedFolder::identifierOf(const QByteArray& path) const {
    constexpr qsizetype kBytes = 12;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(groupIdentifier_);
    hash.addData(QByteArrayView(path).sliced(path_.size()));
    return hash.result().first(kBytes).toHex().toUpper();
}

bool SynchronizedFolder::isEntered(const ListedEntry& entry, const QByteArray& path) {
    if (!entry.isFolder || !entry.isLink) {
        return entry.isFolder;
    }
    const QByteArray target = realPath(path);
    const QByteArray root = realPath(path_);
    const auto number = folderNumberAt(path);
    if (target.isEmpty() || !number || isAtOrBelow(target, root) || isAtOrBelow(root, target) ||
        std::find(followed_.begin(), followed_.end(), *number) != followed_.end()) {
        return false;
    }
    followed_.push_back(*number);
    return true;
}

} // namespace navrel
