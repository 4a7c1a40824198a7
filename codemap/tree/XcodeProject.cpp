#include "codemap/tree/XcodeProject.h"

#include "codemap/tree/DiskStatus.h"
#include "project/ProjectFile.h"

#include <QRegularExpression>

namespace navrel {

namespace {

/// "line 12, column 3: expected ;" as a sentence with its line.
XcodeProject::Failure failureOf(const Error& error) {
    static const QRegularExpression kPlace(QStringLiteral("^line (\\d+), column (\\d+): (.*)$"),
                                           QRegularExpression::DotMatchesEverythingOption);
    const QString text = error.localizedDescription().value_or(error.description());
    const QRegularExpressionMatch match = kPlace.match(text);
    if (!match.hasMatch()) {
        return {"The project file is not readable: " + text.toStdString() + '.', 0};
    }
    return {"The project file is not readable from line " + match.captured(1).toStdString() +
                ", column " + match.captured(2).toStdString() + ": " +
                match.captured(3).toStdString() + '.',
            match.captured(1).toUInt()};
}

} // namespace

std::optional<XcodeProject::Failure> XcodeProject::read(const std::string& path) {
    project_ = {};
    objects_.build({});
    const DiskStatus status = diskStatusOf(path);
    if (status.kind == DiskKind::missing) {
        return Failure{"The project has no project file.", 0};
    }
    if (status.kind != DiskKind::file) {
        return Failure{"The project file is no regular file.", 0};
    }
    if (status.stamp.size > kMaximumProjectFileSize) {
        return Failure{"The project file is larger than 64 MiB.", 0};
    }
    const auto bytes = contentOfFile(path, static_cast<std::size_t>(kMaximumProjectFileSize));
    return bytes ? take(*bytes) : Failure{"The project file cannot be opened.", 0};
}

std::optional<XcodeProject::Failure> XcodeProject::take(const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        return Failure{"The project file is empty.", 0};
    }
    std::optional<Error> error;
    if (!document_.read(bytes, &error)) {
        return error ? failureOf(*error) : Failure{"The project file is not readable.", 0};
    }
    objects_.build(document_.root()["objects"]);
    project_ = object(document_.root()["rootObject"].utf8());
    if (!object(mainGroup())) {
        project_ = {};
        return Failure{"The project file names no main group.", 0};
    }
    return std::nullopt;
}

} // namespace navrel
