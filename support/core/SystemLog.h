#pragma once

#include "support/core/LogOutput.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

namespace navrel {

/// The system's log as an output of the log, under the identifier "Navrel". If there is none, lines
/// are dropped and not counted as lost.
class SystemLog final : public LogOutput {
public:
    /// Tests pass another socket than the system's.
    explicit SystemLog(QByteArray socketPath = QByteArrayLiteral("/dev/log"));

private:
    bool take(const QByteArray& line) override;
    bool connectAgain();

    QByteArray socketPath_;
    OwnedDescriptor socket_;
};

} // namespace navrel
