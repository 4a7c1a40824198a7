#include "scanning/SourceFindings.h"

#include "support/Assertion.h"
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

/// The list of a type: marks and warnings share one.
constexpr std::size_t listOf(ElementType type) {
    switch (type) {
    case ElementType::Class:
        return 0;
    case ElementType::Method:
        return 1;
    case ElementType::Mark:
    case ElementType::Warning:
        return 2;
    case ElementType::Shortcut:
        return 3;
    case ElementType::Property:
        break;
    }
    return 4;
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

void SourceFindings::addElement(const SourceElement& element) {
    auto& list = elements_[listOf(element.type)];
    NAVREL_ASSERT(element.name.size() <= kLongestName);
    if (list.size() < kMostRecords) {
        list.append({element.name.data(), element.line, static_cast<quint32>(element.type) & 7U,
                     static_cast<quint32>(element.name.size()) & quint32(kLongestName)});
    }
}

char* SourceFindings::allocateText(qsizetype size) {
    return static_cast<char*>(texts_.allocate(static_cast<std::size_t>(size), 1));
}

QByteArrayView SourceFindings::keepText(QByteArrayView text) {
    char* const kept = allocateText(text.size());
    std::copy(text.begin(), text.end(), kept);
    return {kept, text.size()};
}

} // namespace navrel
