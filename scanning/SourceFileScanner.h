#pragma once

#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFindings.h"
#include "scanning/SuperclassBudget.h"

#include <QByteArray>

#include <optional>

namespace navrel {

/// Reads and scans source files, one after the other. All headers share one `SuperclassBudget`, so
/// that no project keeps the scanner busy with names that are patterns. One thread at a time.
class SourceFileScanner {
public:
    /// What the file at a path holds, from one reading; nothing where there is no path or the file
    /// cannot be read. Valid until the next call.
    const SourceFindings& scan(const std::optional<QByteArray>& path);

    /// How many bytes of sources have been scanned so far.
    qint64 bytesScanned() const { return bytesScanned_; }

private:
    SourceFileBuffer buffer_;
    SourceFindings findings_;
    SuperclassBudget superclassBudget_;
    qint64 bytesScanned_ = 0;
};

} // namespace navrel
