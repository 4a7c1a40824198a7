#include "tests/RecordingTool.h"

#include <QFile>

namespace navrel {

RecordingTool::RecordingTool(const QString& name, int exitStatus) : oldPath_(qgetenv("PATH")) {
    QFile tool(folder_.filePath(name));
    if (tool.open(QIODevice::WriteOnly)) {
        // NUL ends an argument: the one byte that none can hold.
        tool.write("#!/bin/sh\nprintf '%s\\0' \"$@\" >>\"${0%/*}/calls\"\nexit " +
                   QByteArray::number(exitStatus) + '\n');
    }
    tool.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", folder_.path().toUtf8() + ':' + oldPath_);
}

RecordingTool::~RecordingTool() {
    qputenv("PATH", oldPath_);
}

QByteArrayList RecordingTool::arguments() const {
    QFile calls(folder_.filePath(QStringLiteral("calls")));
    if (!calls.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArrayList arguments = calls.readAll().split('\0');
    arguments.removeLast();
    return arguments;
}

} // namespace navrel
