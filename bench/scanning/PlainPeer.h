#pragma once

#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceFindings.h"
#include "tests/scanning/plain/PlainScan.h"

#include <QByteArray>

#include <cstddef>
#include <memory>
#include <optional>

namespace navrel::bench {

/// A scan of source files by ICU, reading included, to compare the program's own with. All ways
/// find the same.
class PlainPeer {
public:
    enum class Way {
        /// Step by step, as the results are defined: line by line for the superclass and again for
        /// the shortcuts, ten bytes at a time, then the whole text for the elements. All
        /// expressions are made for each file.
        stepByStep,
        /// The text is read once, and expressions are made for each file.
        textAtOnce,
        /// The same with the expressions kept from file to file.
        expressionsKept,
    };

    explicit PlainPeer(Way way);

    /// What a file holds: as long as the peer lives, until the next scan. An unreadable file ends
    /// the program.
    const SourceFindings& scan(const QByteArray& path);

private:
    void scanStepByStep(const QByteArray& path);
    void findSuperclass(const QByteArray& path, const SourceName& name);
    void findShortcuts(const QByteArray& path);
    QByteArrayView textOf(const QByteArray& path);

    Way way_;
    std::optional<PlainScan> kept_;
    SourceFileBuffer buffer_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();
};

/// How many results there are, of all kinds.
std::size_t countOf(const SourceFindings& findings);

} // namespace navrel::bench
