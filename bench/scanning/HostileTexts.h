#pragma once

#include <QByteArray>

#include <cstring>
#include <vector>

namespace navrel::bench {

/// A megabyte made to keep a scan busy, and the name of the file that it would be in.
struct HostileText {
    const char* path;
    QByteArray text;

    /// Whether ICU is asked about it: within a limit of time.
    bool isNamedLikeAPattern() const { return std::strpbrk(path, "+|") != nullptr; }
};

std::vector<HostileText> makeHostileTexts();

} // namespace navrel::bench
