#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace navrel {

/// Programs that stand at absolute paths in `/usr/bin` as only this thread, and the processes that
/// it starts, see it: a mount namespace of their own. The machine stays as it is, and everything is
/// as before when it is destroyed.
class StandInTools {
public:
    StandInTools();
    ~StandInTools();
    StandInTools(const StandInTools&) = delete;
    StandInTools& operator=(const StandInTools&) = delete;

    /// Why there can be no such namespace here; nothing where there is one.
    const std::optional<QByteArray>& failure() const { return failure_; }

    /// Puts a script of the shell at `/usr/bin/NAME`.
    void put(const char* name, const QByteArray& script) const;

    /// A scratch folder that the scripts may write to.
    QString folder() const { return folder_.path(); }
    QByteArray pathOf(const char* name) const { return folder_.path().toUtf8() + '/' + name; }

private:
    bool enterNamespace();
    bool replaceFolder();

    QTemporaryDir folder_;
    int namespaceBefore_ = -1;
    std::optional<QByteArray> failure_;
};

} // namespace navrel
