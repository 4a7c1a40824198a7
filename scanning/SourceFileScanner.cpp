#include "scanning/SourceFileScanner.h"

#include "scanning/SourceScan.h"

namespace navrel {

const SourceFindings& SourceFileScanner::scan(const std::optional<QByteArray>& path) {
    const auto text = path ? buffer_.read(*path) : std::nullopt;
    if (text) {
        bytesScanned_ += text->size();
        scanSource(*text, SourceName(*path), findings_, superclassBudget_);
    } else {
        findings_.clear();
    }
    return findings_;
}

} // namespace navrel
