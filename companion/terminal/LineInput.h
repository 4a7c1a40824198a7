#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace navrel {

/// Lines of a descriptor that is no terminal (a pipe, a file), as they come. One thread.
class LineInput {
public:
    /// Returns once the descriptor can be read, or has ended.
    using Wait = std::function<void(int descriptor)>;

    explicit LineInput(int descriptor, Wait wait = &waitUntilReadable)
        : descriptor_(descriptor), wait_(std::move(wait)) {}

    /// The next line, without its line break; nothing at the end of the input.
    std::optional<QString> next();

private:
    static void waitUntilReadable(int descriptor);
    bool fill();

    const int descriptor_;
    const Wait wait_;
    QByteArray waiting_;
    bool isAtEnd_ = false;
};

} // namespace navrel
