#include "tests/scanning/FindingsText.h"

#include "scanning/SourceScan.h"
#include "tests/scanning/plain/PlainScan.h"

#include <gtest/gtest.h>

#include <memory>

namespace navrel {

namespace {

std::string text(QByteArrayView bytes) {
    return std::string(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

/// More than any test's text needs.
constexpr RegularExpression::Steps kAmple = 1'000'000'000;

std::vector<std::string> scanPlainly(QByteArrayView source, QByteArrayView path) {
    const auto findings = std::make_unique<SourceFindings>();
    const auto error = PlainScan().scan(source, SourceName(path), *findings, kAmple);
    EXPECT_EQ(error, std::nullopt);
    return linesOf(*findings);
}

template <CandidateSearch search>
std::vector<std::string> scanBySearch(QByteArrayView source, QByteArrayView path) {
    const auto findings = std::make_unique<SourceFindings>();
    SuperclassBudget budget;
    scanSource(source, SourceName(path), *findings, budget, search);
    return linesOf(*findings);
}

std::vector<std::string> scanFast(QByteArrayView source, QByteArrayView path) {
    const auto findings = std::make_unique<SourceFindings>();
    scanSource(source, SourceName(path), *findings);
    return linesOf(*findings);
}

} // namespace

std::vector<std::string> linesOf(const SourceFindings& findings) {
    std::vector<std::string> lines;
    if (findings.superclass()) {
        lines.push_back("superclass " + text(*findings.superclass()));
    }
    for (const SourceShortcut& shortcut : findings.shortcuts()) {
        lines.push_back("shortcut comment " + std::to_string(shortcut.line) + " " +
                        text(shortcut.text));
    }
    findings.visitElements([&lines](const SourceElement& element) {
        lines.push_back(text(nameOfElementType(element.type)) + " " + std::to_string(element.line) +
                        " " + text(element.name));
    });
    return lines;
}

const Scanner kPlainScanner = {"plain", scanPlainly};
const Scanner kPortableScanner = {"portable", scanBySearch<findCandidatesPortably>};
const Scanner kFastScanner = {"fast", scanFast};

} // namespace navrel
