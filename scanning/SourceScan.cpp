#include "scanning/SourceScan.h"

#include "scanning/CandidateSearch.h"
#include "scanning/LineExpressions.h"
#include "scanning/RuleMatchers.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

// Most of a source is nothing to any rule. So the text is searched, 64 bytes at a time, for the few
// bytes that some rule begins with, and only there the rules of that beginning are tried. A pattern
// is applied to a text by itself, as if there were no other: its matches do not overlap, so each
// rule remembers where its next match may begin.
//
// The patterns for shortcuts and the superclass are applied line by line, but as no part of them
// takes a line feed, looking for them in the whole text finds the same.
namespace navrel {

namespace {

/// Tells line numbers of places that come in order.
class LineCounter {
public:
    explicit LineCounter(const char* begin) : countedTo_(begin) {}

    quint32 lineAt(const char* place) {
        line_ += countLineFeeds(countedTo_, place);
        countedTo_ = place;
        return line_;
    }

private:
    /// Adds up in bytes side by side, which compilers make vector instructions of.
    static quint32 countLineFeeds(const char* at, const char* end) {
        constexpr std::ptrdiff_t kLanes = 32;
        constexpr int kMostRounds = 255; // what a byte can count
        quint32 count = 0;
        while (end - at >= kLanes) {
            std::array<uchar, kLanes> counts{};
            for (int round = 0; round < kMostRounds && end - at >= kLanes; ++round, at += kLanes) {
                for (std::size_t lane = 0; lane < kLanes; ++lane) {
                    counts[lane] = static_cast<uchar>(counts[lane] + (at[lane] == '\n' ? 1 : 0));
                }
            }
            for (const uchar lane : counts) {
                count += lane;
            }
        }
        return count + static_cast<quint32>(std::count(at, end, '\n'));
    }

    const char* countedTo_;
    quint32 line_ = 1;
};

/// The superclass of a header whose base name holds no special characters.
class SuperclassRule {
public:
    SuperclassRule(const QByteArray& baseName, SourceFindings& findings)
        : foldedBaseName_(baseName.toLower().toStdString()), findings_(findings) {}

    /// The first line with a match counts, and of that its last match.
    void tryAt(const char* place, const char* end) {
        const bool isLineOver = lineEnd_ != nullptr && place >= lineEnd_;
        if (isLineOver || place < next_) {
            return;
        }
        const auto match = matchSuperclass(place, end, foldedBaseName_);
        if (!match) {
            return;
        }
        findings_.setSuperclass(match->superclass);
        next_ = match->end;
        if (lineEnd_ == nullptr) {
            lineEnd_ = std::find(match->end, end, '\n');
        }
    }

private:
    std::string foldedBaseName_;
    SourceFindings& findings_;
    const char* next_ = nullptr;
    const char* lineEnd_ = nullptr; ///< of the line that holds the first match
};

/// One pass over one text.
class SourcePass {
public:
    /// `isWhole` tells whether the text is the whole file's, so that it has elements.
    SourcePass(QByteArrayView text, const SourceName& name, bool isWhole, SourceFindings& findings)
        : end_(text.end()), hasElements_(isWhole),
          methodTerminator_(name.kind == SourceKind::Header ? ';' : '{'), findings_(findings),
          lines_(text.begin()), superclass_(name.baseName, findings) {}

    /// Tries the rules that begin with what stands here. Places come in order.
    void visit(const char* place) {
        switch (*place) {
        case '-':
        case '+':
            return visitSign(place);
        case '/':
            return visitSlashes(place);
        case '@':
            return visitAtSign(place);
        case '#':
            return visitMark(place);
        default:
            return visitSwiftKeyword(place);
        }
    }

private:
    /// Whether a rule whose next match may begin at `next` is to be tried.
    bool isElementPlace(const char* place, const char* next) const {
        return hasElements_ && place >= next;
    }

    void addElement(ElementType type, const char* place, QByteArrayView name) {
        findings_.addElement({type, lines_.lineAt(place), name});
    }

    void visitSign(const char* place) {
        if (!isElementPlace(place, nextMethod_)) {
            return;
        }
        if (const char* matchEnd = matchMethod(place, end_, methodTerminator_)) {
            nextMethod_ = matchEnd;
            char* const name = findings_.allocateText(matchEnd - place);
            const qsizetype length = writeMethodName({place, matchEnd - place}, name);
            addElement(ElementType::Method, place, {name, length});
        }
    }

    void visitAtSign(const char* place) {
        const char second = place[1];
        if (second == 'i' || second == 'I') {
            superclass_.tryAt(place, end_);
        } else if (isElementPlace(place, nextProperty_)) {
            visitProperty(place);
        }
    }

    void visitProperty(const char* place) {
        if (const auto name = properties_.match(place, end_)) {
            nextProperty_ = name->end() + 1;
            addElement(ElementType::Property, place, *name);
        }
    }

    void visitMark(const char* place) {
        if (!isElementPlace(place, nextMark_)) {
            return;
        }
        if (const auto mark = matchMark(place, end_)) {
            nextMark_ = mark->text.end();
            addElement(mark->isMark ? ElementType::Mark : ElementType::Warning, place, mark->text);
        }
    }

    void visitSlashes(const char* place) {
        const char* word = std::find_if_not(place + 2, end_, [](char byte) { return byte == ' '; });
        if (word == end_) {
            return;
        }
        switch (*word) {
        case 'M':
        case 'm':
        case 'W':
        case 'w':
            return visitMark(place);
        case 'N':
        case 'n':
            return visitShortcut(place);
        default:
            return;
        }
    }

    void visitShortcut(const char* place) {
        const char* const textPlace = matchShortcutKeyword(place, end_);
        if (textPlace == nullptr) {
            return;
        }
        if (place >= nextShortcutComment_) {
            const QByteArrayView text = matchShortcutCommentText(textPlace, end_);
            nextShortcutComment_ = text.end();
            if (!text.isEmpty()) {
                findings_.addShortcut({lines_.lineAt(place), text});
            }
        }
        if (isElementPlace(place, nextShortcut_)) {
            if (const auto text = matchShortcutElementText(textPlace, end_)) {
                nextShortcut_ = text->end();
                addElement(ElementType::Shortcut, place, *text);
            }
        }
    }

    void visitSwiftKeyword(const char* place) {
        switch (*place) {
        case 'C':
        case 'c':
            return visitClass(place);
        case 'F':
        case 'f':
            return visitFunction(place);
        case 'V':
        case 'v':
            return visitVariable(place, "var");
        default:
            return visitVariable(place, "let");
        }
    }

    /// The name is the match without its keyword as it is written in lower case, wherever it stands
    /// in the match, and without blanks. No match holds a line feed that would have to go too.
    void addDeclaration(ElementType type, const char* place, const char* matchEnd,
                        std::initializer_list<std::string_view> removed,
                        std::string_view appended = {}) {
        const QByteArrayView match(place, matchEnd - place);
        char* const name =
            findings_.allocateText(match.size() + static_cast<qsizetype>(appended.size()));
        const qsizetype length = writeWithout(match, removed, name);
        char* const nameEnd = std::copy(appended.begin(), appended.end(), name + length);
        addElement(type, place, {name, nameEnd - name});
    }

    void visitClass(const char* place) {
        if (!isElementPlace(place, nextClass_)) {
            return;
        }
        if (const char* matchEnd = matchKeywordAndName(place, end_, "class")) {
            nextClass_ = matchEnd;
            addDeclaration(ElementType::Class, place, matchEnd, {"class", " "});
        }
    }

    void visitFunction(const char* place) {
        if (!isElementPlace(place, nextFunction_)) {
            return;
        }
        if (const char* matchEnd = matchKeywordAndName(place, end_, "func")) {
            nextFunction_ = matchEnd;
            addDeclaration(ElementType::Method, place, matchEnd, {"func", " "}, "()");
        }
    }

    void visitVariable(const char* place, std::string_view keyword) {
        if (!isElementPlace(place, nextVariable_)) {
            return;
        }
        if (const char* matchEnd = matchKeywordAndName(place, end_, keyword)) {
            nextVariable_ = matchEnd;
            addDeclaration(ElementType::Property, place, matchEnd, {"var", "let", " "});
        }
    }

    const char* const end_;
    const bool hasElements_;
    const char methodTerminator_;
    SourceFindings& findings_;
    LineCounter lines_;
    SuperclassRule superclass_;
    PropertyMatcher properties_;

    // Where the next match of a rule may begin.
    const char* nextMethod_ = nullptr;
    const char* nextProperty_ = nullptr;
    const char* nextMark_ = nullptr;
    const char* nextShortcut_ = nullptr;
    const char* nextShortcutComment_ = nullptr;
    const char* nextClass_ = nullptr;
    const char* nextFunction_ = nullptr;
    const char* nextVariable_ = nullptr;
};

/// Whether a base name stands for itself in a pattern. ICU decides about all others.
bool isPlainBaseName(QByteArrayView name) {
    return std::all_of(name.begin(), name.end(), [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= '0' && byte <= '9') || byte == '_' || byte == '-';
    });
}

/// The first place from `at` on where the superclass pattern may begin, or `end`.
const char* findInterface(const char* at, const char* end) {
    while (const void* found = std::memchr(at, '@', static_cast<std::size_t>(end - at))) {
        at = static_cast<const char*>(found) + 1;
        if (at < end && (*at == 'i' || *at == 'I')) {
            return at - 1;
        }
    }
    return end;
}

/// The line, with its line feed, that a place before `end` lies on.
QByteArrayView lineAt(const char* place, const char* begin, const char* end) {
    const auto lineBegin =
        std::find(std::reverse_iterator(place), std::reverse_iterator(begin), '\n');
    const char* const lineFeed = std::find(place, end, '\n');
    return {lineBegin.base(), lineFeed == end ? end : lineFeed + 1};
}

/// The superclass of a header whose base name may change the pattern. ICU is asked only about lines
/// with the beginning of the pattern, unless the name holds a bar, which makes it two patterns.
void findSuperclassByExpression(QByteArrayView text, const QByteArray& baseName,
                                SourceFindings& findings) {
    auto expression = SuperclassExpression::forBaseName(baseName, kSuperclassTimeLimit);
    const bool isEveryLineAsked = baseName.contains('|');
    const char* at = text.begin();
    while (expression && !expression->error() && !findings.superclass()) {
        const char* const asked = isEveryLineAsked ? at : findInterface(at, text.end());
        if (asked == text.end()) {
            return;
        }
        const QByteArrayView line = lineAt(asked, at, text.end());
        if (const auto superclass = expression->superclassOnLine(line)) {
            findings.setSuperclass(findings.keepText(*superclass));
        }
        at = line.end();
    }
}

template <typename Lanes>
void visitSource(QByteArrayView text, SourceKind kind, bool hasPlainName, SourcePass& pass) {
    const auto visit = [&pass](const char* place) { pass.visit(place); };
    if (kind == SourceKind::Swift) {
        visitCandidates<SwiftCandidates, Lanes>(text, visit);
    } else if (kind == SourceKind::Header && hasPlainName) {
        visitCandidates<HeaderCandidates, Lanes>(text, visit);
    } else {
        visitCandidates<ObjectiveCCandidates, Lanes>(text, visit);
    }
}

template <typename Lanes>
void scanWith(QByteArrayView text, const SourceName& name, SourceFindings& findings) {
    findings.clear();
    const qsizetype validLength = validUTF8Length(text);
    const bool isWhole = validLength == text.size();
    if (!isWhole) {
        text = text.first(text.first(validLength).lastIndexOf('\n') + 1);
    }
    const bool hasPlainName = isPlainBaseName(name.baseName);
    SourcePass pass(text, name, isWhole, findings);
    visitSource<Lanes>(text, name.kind, hasPlainName, pass);
    if (name.kind == SourceKind::Header && !hasPlainName) {
        findSuperclassByExpression(text, name.baseName, findings);
    }
}

} // namespace

void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings) {
    scanWith<BestLanes>(text, name, findings);
}

void scanSourcePortably(QByteArrayView text, const SourceName& name, SourceFindings& findings) {
    scanWith<PortableLanes>(text, name, findings);
}

} // namespace navrel
