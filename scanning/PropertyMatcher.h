#pragma once

#include <QByteArrayView>

#include <optional>

namespace navrel {

/// The property pattern,
/// "(@property *\(*[a-z0-9, ]*\)*[IBOutlet ]*[a-z0-9_]*[ \*]+|@dynamic[ ]*)(.*);".
/// Keeps what it learned of a line for the next match on it: one object a text, places in order.
class PropertyMatcher {
public:
    /// Group 2; the match ends with the semicolon behind it.
    std::optional<QByteArrayView> match(const char* at, const char* end);

private:
    const char* lastSemicolonOfLine(const char* at, const char* end);

    const char* lineEnd_ = nullptr;
    const char* lastSemicolon_ = nullptr;
};

} // namespace navrel
