#include "scanning/SourceFindings.h"

#include "support/text/FilePath.h"

#include <algorithm>

namespace navrel {

namespace {

SourceKind kindOfExtension(QByteArrayView extension) {
    if (extension == "h") {
        return SourceKind::Header;
    }
    return extension == "swift" ? SourceKind::Swift : SourceKind::Implementation;
}

} // namespace

SourceName::SourceName(QByteArrayView path)
    : path_(path), kind_(kindOfExtension(pathExtensionView(path))) {}

QByteArrayView SourceName::baseName() const {
    const qsizetype extension = pathExtensionView(path_).size();
    return lastPathComponentView(path_).chopped(extension == 0 ? 0 : extension + 1);
}

const QByteArray& nameOfElementType(ElementType type) {
    static const std::array<QByteArray, 6> kNames = {"class",   "method",   "mark",
                                                     "warning", "shortcut", "property"};
    return kNames[static_cast<std::size_t>(type)];
}

void SourceFindings::clear() {
    superclass_.reset();
    shortcuts_.clear();
    if (shortcuts_.capacity() > kMostKeptRecords) {
        shortcuts_.shrink_to_fit();
    }
    for (auto& list : elements_) {
        list.clear(kMostKeptRecords);
    }
    texts_.release();
}

std::size_t SourceFindings::recordCapacity() const {
    std::size_t capacity = shortcuts_.capacity();
    for (const auto& list : elements_) {
        capacity += list.capacity();
    }
    return capacity;
}

void SourceFindings::addShortcut(const SourceShortcut& shortcut) {
    if (!shortcuts_.empty() && shortcuts_.back().line == shortcut.line) {
        shortcuts_.back() = shortcut;
    } else if (shortcuts_.size() < kMostRecords) {
        shortcuts_.push_back(shortcut);
    }
}

QByteArrayView SourceFindings::keepText(QByteArrayView text) {
    char* const kept = allocateText(text.size());
    std::copy(text.begin(), text.end(), kept);
    return {kept, text.size()};
}

} // namespace navrel
