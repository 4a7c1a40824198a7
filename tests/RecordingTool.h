#pragma once

#include <QByteArrayList>
#include <QString>
#include <QTemporaryDir>

namespace navrel {

/// A fake program that records the arguments of each call. It is found before the real one, since
/// its folder is put first in the `PATH` of this process: tests that run at the same time must not
/// both do that. The destructor restores `PATH`.
class RecordingTool {
public:
    /// `name` is that of the program; every call ends with `exitStatus`.
    explicit RecordingTool(const QString& name, int exitStatus = 0);
    ~RecordingTool();
    RecordingTool(const RecordingTool&) = delete;
    RecordingTool& operator=(const RecordingTool&) = delete;

    /// The arguments of all calls so far in one list, as the bytes that reached the program. Empty
    /// before the first call.
    QByteArrayList arguments() const;

private:
    QTemporaryDir folder_;
    QByteArray oldPath_;
};

} // namespace navrel
