#include "tests/scanning/IdealScan.h"

#include "scanning/SuperclassSearch.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <array>
#include <re2/re2.h>
#include <string>
#include <vector>

namespace navrel {

namespace {

/// "." without line breaks of any kind.
const std::string kDot = R"([^\n\x0B\x0C\r\x{85}\x{2028}\x{2029}])";
/// "class", whose last two letters one character can stand for.
const std::string kClass = R"(cla(?:ss|\x{DF}|\x{1E9E}))";

QByteArrayView viewOf(re2::StringPiece piece) {
    return {piece.data(), static_cast<qsizetype>(piece.size())};
}

RE2::Options memoryForLongLines() {
    RE2::Options options;
    options.set_max_mem(qint64(256) << 20);
    return options;
}

/// Calls `visit` with the texts of each match and its groups.
template <typename Visitor>
void visitMatches(const RE2& pattern, re2::StringPiece text, Visitor visit) {
    std::vector<re2::StringPiece> groups(
        static_cast<std::size_t>(pattern.NumberOfCapturingGroups()) + 1);
    std::size_t start = 0;
    while (pattern.Match(text, start, text.size(), RE2::UNANCHORED, groups.data(),
                         static_cast<int>(groups.size()))) {
        visit(groups);
        start = static_cast<std::size_t>(groups[0].data() - text.data()) + groups[0].size();
    }
}

std::string without(std::string text, std::initializer_list<const char*> parts) {
    for (const char* part : parts) {
        RE2::GlobalReplace(&text, RE2::QuoteMeta(part), "");
    }
    return text;
}

} // namespace

struct IdealScan::Patterns {
    RE2 shortcutLine{"(?i)// *navrel: *(" + kDot + "*)", memoryForLongLines()};
    RE2 swiftClass{"(?i)" + kClass + " *([a-z0-9]*)", memoryForLongLines()};
    RE2 swiftFunction{"(?i)func *([a-z0-9]*)", memoryForLongLines()};
    RE2 swiftVariable{"(?i)(var *([a-z0-9]*)|let *([a-z0-9]*))", memoryForLongLines()};
    RE2 method{R"((?i)(-|\+) *\([a-z0-9 *]*\)[a-z :()_0-9*\n]*\{)", memoryForLongLines()};
    RE2 methodDeclaration{R"((?i)(-|\+) *\([a-z0-9 *]*\)[a-z :()_0-9*\n]*;)", memoryForLongLines()};
    RE2 argument{R"(:[^\)]+\) *[^ ]+)", memoryForLongLines()};
    RE2 typeCast{R"(\( *([^\) *]*)[ *]*\))", memoryForLongLines()};
    RE2 property{R"((?i)(@property *\(*[a-z0-9, ]*\)*[IBOutlet ]*[a-z0-9_]*[ \*]+|@dynamic[ ]*)()" +
                     kDot + "*);",
                 memoryForLongLines()};
    RE2 mark{"(?i)(#pragma mark|#warning|// *MARK:|// *WARNING:)[ -]+(" + kDot + "*)",
             memoryForLongLines()};
    RE2 shortcut{"(?i)(// *navrel:)[ -]+(" + kDot + "*)", memoryForLongLines()};

    std::string methodName(re2::StringPiece match) const {
        std::string name(match);
        RE2::GlobalReplace(&name, argument, ":");
        RE2::GlobalReplace(&name, typeCast, "");
        return without(std::move(name), {" ", "{", ";"});
    }
};

namespace {

/// Adds elements for the matches of patterns, with their lines.
class ElementList {
public:
    ElementList(re2::StringPiece text, SourceFindings& findings)
        : text_(text), findings_(findings) {}

    template <typename MakeName>
    void add(const RE2& pattern, ElementType type, MakeName makeName) {
        const char* counted = text_.begin();
        quint32 line = 1;
        visitMatches(pattern, text_, [&](const std::vector<re2::StringPiece>& groups) {
            line += static_cast<quint32>(std::count(counted, groups[0].begin(), '\n'));
            counted = groups[0].begin();
            const std::string name = makeName(groups);
            const bool isWarning =
                type == ElementType::Mark && !RE2::PartialMatch(groups[1], "(?i)mark");
            findings_.addElement({isWarning ? ElementType::Warning : type, line,
                                  findings_.keepText(QByteArrayView(name))});
        });
    }

private:
    re2::StringPiece text_;
    SourceFindings& findings_;
};

void scanLines(re2::StringPiece text, const RE2& shortcutLine, const RE2* superclass,
               SourceFindings& findings) {
    quint32 lineNumber = 1;
    for (std::size_t begin = 0; begin < text.size(); ++lineNumber) {
        const std::size_t end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        const re2::StringPiece line = text.substr(begin, end - begin);
        std::optional<QByteArrayView> found;
        if (superclass != nullptr && !findings.superclass()) {
            visitMatches(*superclass, line, [&](const auto& groups) { found = viewOf(groups[1]); });
        }
        if (found) {
            findings.setSuperclass(*found);
        }
        visitMatches(shortcutLine, line, [&](const auto& groups) {
            if (!groups[1].empty()) {
                findings.addShortcut({lineNumber, viewOf(groups[1])});
            }
        });
        begin = end;
    }
}

} // namespace

IdealScan::IdealScan() : patterns_(std::make_unique<Patterns>()) {}

IdealScan::~IdealScan() = default;

bool IdealScan::holdsFor(QByteArrayView text, const SourceName& name) {
    constexpr std::array kLettersOfOneCharacter = {"ss", "st", "ff", "fi", "fl"};
    if (name.kind() == SourceKind::Header) {
        const QByteArray baseName = name.baseName().toByteArray().toLower();
        const bool hasOtherForms =
            std::any_of(kLettersOfOneCharacter.begin(), kLettersOfOneCharacter.end(),
                        [&](const char* letters) { return baseName.contains(letters); });
        if (hasOtherForms || !isPlainBaseName(baseName)) {
            return false;
        }
    }
    return isValidUTF8(text);
}

void IdealScan::scan(QByteArrayView source, const SourceName& name,
                     SourceFindings& findings) const {
    const re2::StringPiece text(source.data(), static_cast<std::size_t>(source.size()));
    const Patterns& patterns = *patterns_;
    const RE2 superclass("(?i)@interface " + name.baseName().toByteArray().toStdString() +
                             " *: *([a-z0-9]*) *(<([a-z, ]*)>)*",
                         memoryForLongLines());
    findings.clear();
    scanLines(text, patterns.shortcutLine,
              name.kind() == SourceKind::Header ? &superclass : nullptr, findings);
    const auto secondGroup = [](const auto& groups) { return std::string(groups[2]); };
    ElementList elements(text, findings);
    if (name.kind() == SourceKind::Swift) {
        elements.add(patterns.swiftClass, ElementType::Class, [](const auto& groups) {
            return without(std::string(groups[0]), {"\n", "class", " "});
        });
        elements.add(patterns.swiftFunction, ElementType::Method, [](const auto& groups) {
            return without(std::string(groups[0]), {"\n", "func", " "}) + "()";
        });
        elements.add(patterns.swiftVariable, ElementType::Property, [](const auto& groups) {
            return without(std::string(groups[0]), {"var", "let", " "});
        });
    } else {
        elements.add(name.kind() == SourceKind::Header ? patterns.methodDeclaration
                                                       : patterns.method,
                     ElementType::Method,
                     [&patterns](const auto& groups) { return patterns.methodName(groups[0]); });
        elements.add(patterns.property, ElementType::Property, secondGroup);
    }
    elements.add(patterns.mark, ElementType::Mark, secondGroup);
    elements.add(patterns.shortcut, ElementType::Shortcut, secondGroup);
}

} // namespace navrel
