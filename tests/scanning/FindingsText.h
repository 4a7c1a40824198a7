#pragma once

#include "scanning/SourceFindings.h"

#include <QByteArray>
#include <QByteArrayView>

#include <ostream>
#include <string>
#include <vector>

namespace navrel {

/// Findings as lines to compare and to read: "superclass Base", "shortcut comment 3 text",
/// "method 7 -name:" and so on, in their order, the number being the line.
std::vector<std::string> linesOf(const SourceFindings& findings);

/// One way of scanning, to run the same tests with.
struct Scanner {
    const char* name;
    std::vector<std::string> (*scan)(QByteArrayView text, QByteArrayView path);
};

inline void PrintTo(const Scanner& scanner, std::ostream* out) {
    *out << scanner.name;
}

/// By ICU, then by hand: without vector instructions, and with the best.
extern const Scanner kPlainScanner;
extern const Scanner kPortableScanner;
extern const Scanner kFastScanner;

} // namespace navrel
