#include "scanning/SourceScan.h"

#include "scanning/PropertyMatcher.h"
#include "scanning/RuleMatchers.h"
#include "scanning/SuperclassSearch.h"
#include "scanning/search/ByteScan.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

// Most of a source matches no rule. So the text is searched, 64 bytes at a time, for the few bytes
// that rules begin with, and only there are the rules with that beginning tried. Each rule is its
// own search of the whole text, whose matches do not overlap; so each remembers where its next
// match may begin.
//
// By definition, shortcuts and the superclass are searched line by line. Their patterns match no
// line feed, so a search of the whole text finds the same.
namespace navrel {

namespace {

constexpr Keyword kClass("class");
constexpr Keyword kFunction("func");
constexpr std::array kVariables = {Keyword("var"), Keyword("let")};

/// The line numbers, from 1, of places that are asked for in ascending order.
class LineCounter {
public:
    explicit LineCounter(const char* begin) : countedTo_(begin) {}

    quint32 lineAt(const char* place) {
        constexpr std::ptrdiff_t kFew = 32; // bytes: for fewer a call costs more than the count
        line_ += place - countedTo_ < kFew
                     ? static_cast<quint32>(std::count(countedTo_, place, '\n'))
                     : countLineFeeds(countedTo_, place);
        countedTo_ = place;
        return line_;
    }

private:
    const char* countedTo_;
    quint32 line_ = 1;
};

/// The rule for the superclass of a header. The last match on the first line with a match counts.
class SuperclassRule {
public:
    SuperclassRule(const SourceName& name, QByteArrayView text, SourceFindings& findings,
                   SuperclassBudget& budget)
        : text_(text), findings_(findings) {
        QByteArray baseName = name.baseName().toByteArray();
        if (isPlainBaseName(baseName)) {
            foldedBaseName_ = std::move(baseName).toLower();
        } else {
            search_.emplace(std::move(baseName), budget);
        }
    }

    /// Tries the rule at a place where its pattern may begin.
    void tryAt(const char* place) {
        if (place < next_) {
            return;
        }
        if (!search_) {
            tryPlainNameAt(place);
        } else if (!search_->isOver()) {
            tryLineAt(place);
        }
    }

    /// Tries all lines, if the base name makes a pattern that need not begin with "@i".
    void tryAllLines() {
        if (search_ && search_->canBeginAnywhere()) {
            for (const char* at = text_.begin(); at < text_.end() && !search_->isOver();
                 at = next_) {
                tryLineAt(at);
            }
        }
    }

private:
    void tryPlainNameAt(const char* place) {
        const bool isOnLaterLine = lineEnd_ != nullptr && place >= lineEnd_;
        const auto match =
            isOnLaterLine ? std::nullopt : matchSuperclass(place, text_.end(), foldedView());
        if (!match) {
            return;
        }
        findings_.setSuperclass(match->superclass);
        next_ = match->end;
        if (lineEnd_ == nullptr) {
            lineEnd_ = std::find(match->end, text_.end(), '\n');
        }
    }

    /// Searches the line of a place. Further places on that line are skipped.
    void tryLineAt(const char* place) {
        const QByteArrayView line = lineAt(place);
        next_ = line.end();
        if (const auto superclass = search_->superclassOnLine(line)) {
            findings_.setSuperclass(findings_.keepText(*superclass));
        }
    }

    /// The line of a place, with its line feed.
    QByteArrayView lineAt(const char* place) const {
        const auto begin =
            std::find(std::reverse_iterator(place), std::reverse_iterator(text_.begin()), '\n');
        const char* const lineFeed = std::find(place, text_.end(), '\n');
        return {begin.base(), lineFeed == text_.end() ? lineFeed : lineFeed + 1};
    }

    std::string_view foldedView() const {
        return {foldedBaseName_.data(), static_cast<std::size_t>(foldedBaseName_.size())};
    }

    QByteArrayView text_;
    SourceFindings& findings_;
    const char* next_ = nullptr; ///< where the next match may begin

    // For a plain base name, which is matched by hand.
    QByteArray foldedBaseName_;
    const char* lineEnd_ = nullptr; ///< of the line with the first match; null before there is one

    std::optional<SuperclassSearch> search_; ///< for any other base name
};

/// Tries the rules at the candidates of one text, and collects the findings.
class SourcePass {
public:
    /// `isWhole` says whether the text is the whole file: only then are elements looked for.
    SourcePass(QByteArrayView text, const SourceName& name, bool isWhole, SourceFindings& findings,
               SuperclassBudget& budget)
        : end_(text.end()), hasElements_(isWhole),
          methodTerminator_(name.kind() == SourceKind::Header ? ';' : '{'), findings_(findings),
          lines_(text.begin()) {
        if (name.kind() == SourceKind::Header) {
            superclass_.emplace(name, text, findings, budget);
            superclass_->tryAllLines();
        }
    }

    /// Tries the rules that may begin at a candidate. Places must come in ascending order.
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
    /// Whether an element's rule, whose next match may begin at `next`, is to be tried at `place`.
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
        const char second = place[1]; // one of "pPdDiI", as the candidates say
        if (second == 'i' || second == 'I') {
            superclass_->tryAt(place); // "@i" is a candidate in headers alone, which have this rule
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
            return visitVariable(place, kVariables[0]);
        default:
            return visitVariable(place, kVariables[1]);
        }
    }

    void addDeclaration(ElementType type, const DeclarationMatch& match, Keywords keywords,
                        std::string_view appended = {}) {
        QByteArrayView name = match.name;
        if (!appended.empty() || !isOrdinaryDeclaration(match, keywords)) {
            name = composedName(match, keywords, appended);
        }
        addElement(type, match.keyword.begin(), name);
    }

    /// The match without keywords and blanks, and `appended` after it, in memory of the findings.
    /// Line feeds need not be removed: no declaration's pattern matches one.
    QByteArrayView composedName(const DeclarationMatch& match, Keywords keywords,
                                std::string_view appended) {
        char* const name = findings_.allocateText(match.keyword.size() + match.name.size() +
                                                  static_cast<qsizetype>(appended.size()));
        const qsizetype length = writeDeclarationName(match, keywords, name);
        char* const end = std::copy(appended.begin(), appended.end(), name + length);
        return {name, end - name};
    }

    void visitClass(const char* place) {
        if (!isElementPlace(place, nextClass_)) {
            return;
        }
        if (const auto match = matchDeclaration(place, end_, kClass)) {
            nextClass_ = match->name.end();
            addDeclaration(ElementType::Class, *match, {&kClass, 1});
        }
    }

    void visitFunction(const char* place) {
        if (!isElementPlace(place, nextFunction_)) {
            return;
        }
        if (const auto match = matchDeclaration(place, end_, kFunction)) {
            nextFunction_ = match->name.end();
            addDeclaration(ElementType::Method, *match, {&kFunction, 1}, "()");
        }
    }

    void visitVariable(const char* place, const Keyword& keyword) {
        if (!isElementPlace(place, nextVariable_)) {
            return;
        }
        if (const auto match = matchDeclaration(place, end_, keyword)) {
            nextVariable_ = match->name.end();
            addDeclaration(ElementType::Property, *match, kVariables);
        }
    }

    const char* const end_;
    const bool hasElements_;
    const char methodTerminator_;
    SourceFindings& findings_;
    LineCounter lines_;
    std::optional<SuperclassRule> superclass_; ///< nil unless the source is a header
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

/// Calls `pass.visit` for every candidate of a text, in ascending order. At the end of the text,
/// NUL bytes are taken to follow.
class CandidateVisit {
public:
    CandidateVisit(Candidates candidates, CandidateSearch search, SourcePass& pass)
        : candidates_(candidates), search_(search), pass_(pass) {}

    void visitAll(QByteArrayView text) {
        const char* at = text.begin();
        const qsizetype searchable = text.size() - kCandidateLookahead;
        for (qsizetype blocks = searchable / kCandidateBlockSize; blocks > 0;) {
            const qsizetype count = std::min(blocks, kBlocksAtOnce);
            visitBlocks(at, at, count);
            at += count * kCandidateBlockSize;
            blocks -= count;
        }
        std::array<char, 2 * kCandidateBlockSize + kCandidateLookahead> rest{};
        std::copy(at, text.end(), rest.begin());
        visitBlocks(at, rest.data(), 2);
    }

private:
    /// 4 KiB of text, and offsets of twice that: both stay in the processor's first-level cache.
    static constexpr qsizetype kBlocksAtOnce = 64;

    /// Visits the candidates of the blocks at `place`. The search reads `bytes`, which are the same
    /// bytes or a copy of them with room for the lookahead.
    void visitBlocks(const char* place, const char* bytes, qsizetype blockCount) {
        const qsizetype found = search_(candidates_, bytes, blockCount, offsets_.data());
        const qsizetype likely = keepLikelyCandidates(candidates_, bytes, offsets_.data(), found);
        for (qsizetype index = 0; index < likely; ++index) {
            pass_.visit(place + offsets_[static_cast<std::size_t>(index)]);
        }
    }

    Candidates candidates_;
    CandidateSearch search_;
    SourcePass& pass_;
    std::array<quint16, kBlocksAtOnce * kCandidateBlockSize + kCandidateSurplus> offsets_;
};

Candidates candidatesOf(SourceKind kind) {
    switch (kind) {
    case SourceKind::Swift:
        return Candidates::Swift;
    case SourceKind::Header:
        return Candidates::Header;
    case SourceKind::Implementation:
        break;
    }
    return Candidates::ObjectiveC;
}

/// `fastestCandidateSearch`, which asks the processor, called once.
CandidateSearch usualCandidateSearch() {
    static const CandidateSearch search = fastestCandidateSearch();
    return search;
}

} // namespace

void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget, CandidateSearch search) {
    findings.clear();
    const qsizetype asciiLength = asciiPrefixLength(text);
    const qsizetype validLength = asciiLength + validUTF8Length(text.sliced(asciiLength));
    const bool isWhole = validLength == text.size();
    if (!isWhole) { // the lines before the first one that is not UTF-8
        text = text.first(text.first(validLength).lastIndexOf('\n') + 1);
    }
    SourcePass pass(text, name, isWhole, findings, budget);
    CandidateVisit(candidatesOf(name.kind()), search, pass).visitAll(text);
}

void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                SuperclassBudget& budget) {
    scanSource(text, name, findings, budget, usualCandidateSearch());
}

void scanSource(QByteArrayView text, const SourceName& name, SourceFindings& findings) {
    SuperclassBudget budget;
    scanSource(text, name, findings, budget);
}

} // namespace navrel
