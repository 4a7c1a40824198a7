#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace navrel {

/// Lines of a descriptor (a terminal, a pipe, a file), with the event loop running while none has
/// come yet. Main thread.
class LineInput {
public:
    explicit LineInput(int descriptor) : descriptor_(descriptor) {}

    /// The next line, without its line break; nothing at the end of the input.
    std::optional<QString> next();

private:
    bool fill();

    int descriptor_;
    QByteArray waiting_;
    bool isAtEnd_ = false;
};

} // namespace navrel
