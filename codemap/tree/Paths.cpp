#include "codemap/tree/Paths.h"

namespace navrel {

namespace {

std::string_view withoutSlashesAtTheEnd(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    return path;
}

void append(std::string_view part, std::string& path) {
    if (part.empty() || part == ".") {
        return;
    }
    if (part == "..") {
        path.resize(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
        return;
    }
    path += '/';
    path += part;
}

void appendParts(std::string_view parts, std::string& path) {
    while (!parts.empty()) {
        const std::size_t end = parts.find('/');
        append(parts.substr(0, end), path);
        parts = end == std::string_view::npos ? std::string_view() : parts.substr(end + 1);
    }
}

} // namespace

std::string resolvedPath(std::string_view folder, std::string_view path) {
    std::string result;
    if (!path.starts_with('/')) {
        appendParts(folder, result);
    }
    appendParts(path, result);
    return result.empty() ? "/" : result;
}

std::string_view parentFolder(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : path.substr(0, slash);
}

std::string_view lastPart(std::string_view path) {
    path = withoutSlashesAtTheEnd(path);
    return path.substr(path.rfind('/') + 1);
}

std::string_view extensionOf(std::string_view path) {
    const std::string_view name = lastPart(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

std::string_view lastPartWithoutExtension(std::string_view path) {
    const std::string_view name = lastPart(path);
    const std::string_view extension = extensionOf(path);
    return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

bool isWithin(std::string_view path, std::string_view folder) {
    return folder == "/" || (path.starts_with(folder) &&
                             (path.size() == folder.size() || path[folder.size()] == '/'));
}

std::string relativePath(std::string_view path, std::string_view folder) {
    std::string result;
    while (!isWithin(path, folder)) {
        folder = parentFolder(folder);
        result += "../";
    }
    const std::size_t prefix = folder == "/" ? 1 : folder.size() + 1;
    if (path.size() >= prefix) {
        result += path.substr(prefix);
    }
    return result;
}

std::string_view lastTwoParts(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || slash == 0) {
        return lastPart(path);
    }
    return path.substr(path.rfind('/', slash - 1) + 1);
}

} // namespace navrel
