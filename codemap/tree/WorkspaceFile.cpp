#include "codemap/tree/WorkspaceFile.h"

#include "codemap/tree/DiskStatus.h"
#include "codemap/tree/Paths.h"

#include <QXmlStreamReader>

#include <string_view>

namespace navrel {

namespace {

constexpr int kMaximumDepth = 64;

std::string textOf(QStringView text) {
    return text.toUtf8().toStdString();
}

class WorkspaceReader {
public:
    WorkspaceReader(const QByteArray& bytes, std::string_view bundle)
        : xml_(bytes), folder_(parentFolder(bundle)) {}

    std::optional<std::vector<WorkspaceItem>> read() {
        if (!xml_.readNextStartElement() || xml_.name() != QLatin1String("Workspace")) {
            return std::nullopt;
        }
        std::vector<WorkspaceItem> items = readItems(folder_, 0);
        return xml_.hasError() ? std::nullopt : std::optional(std::move(items));
    }

private:
    std::vector<WorkspaceItem> readItems(const std::string& folder, int depth) {
        std::vector<WorkspaceItem> items;
        while (xml_.readNextStartElement()) {
            const bool isGroup = xml_.name() == QLatin1String("Group");
            const bool isFile = xml_.name() == QLatin1String("FileRef");
            if ((!isGroup && !isFile) || depth == kMaximumDepth) {
                xml_.skipCurrentElement();
                continue;
            }
            WorkspaceItem item;
            item.isGroup = isGroup;
            item.name = textOf(xml_.attributes().value(QLatin1String("name")));
            item.path = place(textOf(xml_.attributes().value(QLatin1String("location"))), folder);
            if (isGroup) {
                item.items = readItems(item.path.empty() ? folder : item.path, depth + 1);
            } else {
                xml_.skipCurrentElement();
            }
            items.push_back(std::move(item));
        }
        return items;
    }

    /// The absolute path that a location like "group:App/App.xcodeproj" names.
    std::string place(std::string_view location, const std::string& folder) const {
        const std::size_t colon = location.find(':');
        const std::string_view kind = location.substr(0, colon);
        const std::string_view path =
            colon == std::string_view::npos ? std::string_view() : location.substr(colon + 1);
        if (kind == "group") {
            return resolvedPath(folder, path);
        }
        if (kind == "container") {
            return resolvedPath(folder_, path);
        }
        if (kind == "absolute" && path.starts_with('/')) {
            return resolvedPath("/", path);
        }
        // The workspace inside of a project names the project that holds it.
        return kind == "self" ? resolvedPath(folder_, path) : std::string();
    }

    QXmlStreamReader xml_;
    std::string folder_;
};

} // namespace

std::optional<std::vector<WorkspaceItem>> readWorkspace(const std::string& bundlePath) {
    const auto bytes =
        contentOfFile(bundlePath + "/contents.xcworkspacedata", kMaximumWorkspaceFileSize);
    return bytes ? WorkspaceReader(*bytes, bundlePath).read() : std::nullopt;
}

std::vector<std::string> projectsIn(const std::vector<WorkspaceItem>& items) {
    std::vector<std::string> projects;
    for (const WorkspaceItem& item : items) {
        if (item.isGroup) {
            const std::vector<std::string> inside = projectsIn(item.items);
            projects.insert(projects.end(), inside.begin(), inside.end());
        } else if (extensionOf(item.path) == "xcodeproj") {
            projects.push_back(item.path);
        }
    }
    return projects;
}

} // namespace navrel
