#include "support/text/FilePath.h"

namespace navrel {

namespace {

constexpr char kSeparator = '/';

void appendFixingSlashes(QByteArray& result, QByteArrayView part) {
    for (const char character : part) {
        if (character != kSeparator || !result.endsWith(kSeparator)) {
            result += character;
        }
    }
}

QByteArrayView withoutSlashesAtTheEnd(QByteArrayView path) {
    while (path.size() > 1 && path.back() == kSeparator) {
        path.chop(1);
    }
    return path;
}

/// The position of the extension's dot within a last component, or -1.
qsizetype extensionDot(QByteArrayView component) {
    const qsizetype dot = component.lastIndexOf('.');
    const bool hasExtension = dot > 0 && dot + 1 < component.size();
    return hasExtension ? dot : -1;
}

} // namespace

bool canNameAFile(QByteArrayView path) {
    return !path.isEmpty() && path.size() <= kMaximumPathLength && !path.contains('\0');
}

bool canNameAFile(QStringView path) {
    // A character takes a byte at the least: what is huge is not converted first.
    return path.size() <= kMaximumPathLength && path.isValidUtf16() &&
           canNameAFile(QByteArrayView(path.toUtf8()));
}

QByteArray appendingPathComponent(QByteArrayView path, QByteArrayView component) {
    QByteArray result;
    result.reserve(path.size() + component.size() + 1);
    appendFixingSlashes(result, path);
    if (!path.isEmpty() && !component.isEmpty()) {
        appendFixingSlashes(result, "/");
    }
    appendFixingSlashes(result, component);
    if (result.size() > 1 && result.endsWith(kSeparator)) {
        result.chop(1);
    }
    return result;
}

QByteArrayView lastPathComponentView(QByteArrayView path) {
    const QByteArrayView trimmed = withoutSlashesAtTheEnd(path);
    if (trimmed.size() <= 1) {
        return trimmed;
    }
    return trimmed.sliced(trimmed.lastIndexOf(kSeparator) + 1);
}

QByteArray lastPathComponent(QByteArrayView path) {
    return lastPathComponentView(path).toByteArray();
}

QByteArray deletingLastPathComponent(QByteArrayView path) {
    const QByteArrayView trimmed = withoutSlashesAtTheEnd(path);
    const qsizetype slash = trimmed.lastIndexOf(kSeparator);
    if (slash < 0) {
        return QByteArrayLiteral("");
    }
    return withoutSlashesAtTheEnd(trimmed.first(slash + 1)).toByteArray();
}

QByteArrayView pathExtensionView(QByteArrayView path) {
    const QByteArrayView component = lastPathComponentView(path);
    const qsizetype dot = extensionDot(component);
    return dot < 0 ? QByteArrayView("") : component.sliced(dot + 1);
}

QByteArray pathExtension(QByteArrayView path) {
    return pathExtensionView(path).toByteArray();
}

QByteArray deletingPathExtension(QByteArrayView path) {
    const QByteArrayView trimmed = withoutSlashesAtTheEnd(path);
    const QByteArrayView component = lastPathComponentView(trimmed);
    const qsizetype dot = extensionDot(component);
    const qsizetype dropped = dot < 0 ? 0 : component.size() - dot;
    return trimmed.chopped(dropped).toByteArray();
}

} // namespace navrel
