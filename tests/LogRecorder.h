#pragma once

#include "support/core/Log.h"

#include <QStringList>

#include <utility>

namespace navrel {

/// Receives the log while it lives. Main thread.
class LogRecorder {
public:
    LogRecorder()
        : previous_(setLogReceiver([this](const QString& message) { messages_.append(message); })) {
    }
    ~LogRecorder() { setLogReceiver(std::move(previous_)); }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    const QStringList& messages() const { return messages_; }
    /// The messages so far, which are forgotten.
    QStringList take() { return std::exchange(messages_, {}); }

private:
    QStringList messages_;
    LogReceiver previous_;
};

} // namespace navrel
