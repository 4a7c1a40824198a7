#pragma once

#include "support/core/LogOutput.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

namespace navrel {

/// The system's log, under the identifier "Navrel". Where there is none, nothing is lost.
class SystemLog final : public LogOutput {
public:
    /// Another socket than the system's is for tests.
    explicit SystemLog(QByteArray socketPath = QByteArrayLiteral("/dev/log"));

private:
    bool take(const QByteArray& line) override;
    bool connectAgain();

    QByteArray socketPath_;
    OwnedDescriptor socket_;
};

} // namespace navrel
