#pragma once

#include "scanning/SourceFindings.h"

#include <QByteArrayView>

#include <memory>

namespace navrel {

/// What the patterns mean, where ICU gives up on a text for want of time or memory: they are
/// matched by RE2, whose time is linear. For texts in UTF-8 and plain base names. The rules for
/// characters outside ASCII are spelled out, since RE2 has its own.
class IdealScan {
public:
    IdealScan();
    ~IdealScan();

    void scan(QByteArrayView text, const SourceName& name, SourceFindings& findings) const;

private:
    struct Patterns;
    std::unique_ptr<Patterns> patterns_;
};

} // namespace navrel
