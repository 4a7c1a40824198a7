#pragma once

#include <QByteArrayView>

#include <optional>

namespace navrel {

/// Matches the property pattern,
/// "(@property *\(*[a-z0-9, ]*\)*[IBOutlet ]*[a-z0-9_]*[ \*]+|@dynamic[ ]*)(.*);".
/// It remembers the line of the last match, so an object is for one text, and places must come in
/// ascending order.
class PropertyMatcher {
public:
    /// Group 2 of a match that begins at `at`, or nil. The semicolon after it ends the match.
    std::optional<QByteArrayView> match(const char* at, const char* end);

private:
    const char* lastSemicolonOfLine(const char* at, const char* end);

    const char* lineEnd_ = nullptr;
    const char* lastSemicolon_ = nullptr;
};

} // namespace navrel
