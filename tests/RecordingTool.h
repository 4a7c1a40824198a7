#pragma once

#include <QByteArrayList>
#include <QString>
#include <QTemporaryDir>

namespace navrel {

/// A program that stands in for a real one first in `PATH` and records how it is called. One test
/// at a time; the old `PATH` is back when it is destroyed.
class RecordingTool {
public:
    explicit RecordingTool(const QString& name, int exitStatus = 0);
    ~RecordingTool();
    RecordingTool(const RecordingTool&) = delete;
    RecordingTool& operator=(const RecordingTool&) = delete;

    /// The arguments of every call so far, one after another, as the bytes that reached the
    /// program.
    QByteArrayList arguments() const;

private:
    QTemporaryDir folder_;
    QByteArray oldPath_;
};

} // namespace navrel
