#include "scanning/SourceScan.h"
#include "scanning/SuperclassBudget.h"
#include "support/core/Assertion.h"
#include "tests/scanning/plain/PlainScan.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace navrel {
namespace {

/// Beyond it ICU backtracks without end, and what it found is not what the patterns mean.
constexpr RegularExpression::Steps kLimit = 5'000'000;

/// More than ICU needs for all lines of a text: giving up a superclass for want of steps would look
/// like a difference.
constexpr SuperclassBudget::Steps kAmple = 1'000'000'000'000;

constexpr std::array kPaths = {"/p/Foo.h", "/p/Foo.m", "/p/Foo.swift", "/p/Kissff.h",
                               "/p/Foo+Bar.h"};

bool areEqual(const SourceShortcut& left, const SourceShortcut& right) {
    return left.line == right.line && left.text == right.text;
}

std::vector<SourceElement> elementsOf(const SourceFindings& findings) {
    std::vector<SourceElement> elements;
    findings.visitElements(
        [&elements](const SourceElement& element) { elements.push_back(element); });
    return elements;
}

void checkEqual(const SourceFindings& left, const SourceFindings& right) {
    NAVREL_ASSERT(left.superclass() == right.superclass());
    NAVREL_ASSERT(left.shortcuts().size() == right.shortcuts().size());
    for (std::size_t i = 0; i < left.shortcuts().size(); ++i) {
        NAVREL_ASSERT(areEqual(left.shortcuts()[i], right.shortcuts()[i]));
    }
    const std::vector<SourceElement> leftElements = elementsOf(left);
    const std::vector<SourceElement> rightElements = elementsOf(right);
    NAVREL_ASSERT(leftElements.size() == rightElements.size());
    for (std::size_t i = 0; i < leftElements.size(); ++i) {
        NAVREL_ASSERT(leftElements[i].type == rightElements[i].type);
        NAVREL_ASSERT(leftElements[i].line == rightElements[i].line);
        NAVREL_ASSERT(leftElements[i].name == rightElements[i].name);
    }
}

struct Scans {
    PlainScan plain;
    SourceFindings expected;
    SourceFindings found;
};

} // namespace
} // namespace navrel

/// The first byte chooses the file's name, the others are its text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace navrel;
    static const auto scans = std::make_unique<Scans>();
    if (size == 0) {
        return 0;
    }
    const SourceName name = SourceName(kPaths[data[0] % kPaths.size()]);
    const QByteArrayView text(reinterpret_cast<const char*>(data + 1),
                              static_cast<qsizetype>(size - 1));
    SuperclassBudget budget(kAmple);
    scanSource(text, name, scans->found, budget);
    scanSource(text, name, scans->expected, budget, findCandidatesPortably);
    checkEqual(scans->found, scans->expected);
    if (!scans->plain.scan(text, name, scans->expected, kLimit)) {
        checkEqual(scans->found, scans->expected);
    }
    return 0;
}
