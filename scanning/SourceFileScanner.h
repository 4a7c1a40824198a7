#pragma once

#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFindings.h"
#include "scanning/SuperclassBudget.h"

#include <QByteArray>

#include <optional>

namespace navrel {

/// Reads and scans source files, one after another. All headers share one `SuperclassBudget`, so
/// that file names that are expensive patterns cannot keep the scanner busy. One thread at a time.
class SourceFileScanner {
public:
    /// The findings in the file at a path, which is read once. Empty if the path is nil, or the
    /// file cannot be read. Valid until the next call.
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
