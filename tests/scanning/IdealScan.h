#pragma once

#include "scanning/SourceFindings.h"

#include <QByteArrayView>

#include <memory>

namespace navrel {

/// What the patterns mean, where ICU gives up on a text for want of time or memory: they are
/// matched by RE2, whose time is linear. The rules for characters outside ASCII are spelled out,
/// since RE2 has its own.
class IdealScan {
public:
    IdealScan();
    ~IdealScan();

    /// Whether `scan` tells what is in a text of that name: in one in UTF-8, whose base name, if it
    /// is a header's, is neither a pattern nor written with letters that one character can stand
    /// for, such as "ff".
    static bool holdsFor(QByteArrayView text, const SourceName& name);

    /// For texts that it holds for.
    void scan(QByteArrayView text, const SourceName& name, SourceFindings& findings) const;

private:
    struct Patterns;
    std::unique_ptr<Patterns> patterns_;
};

} // namespace navrel
