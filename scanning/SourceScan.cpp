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

// Most of a source is nothing to any rule. So the text is searched, 64 bytes at a time, for the few
// bytes that some rule begins with, and only there the rules of that beginning are tried. A pattern
// is applied to a text by itself, as if there were no other: its matches do not overlap, so each
// rule remembers where its next match may begin.
//
// The patterns for shortcuts and the superclass are applied line by line, but as no part of them
// takes a line feed, looking for them in the whole text finds the same.
namespace navrel {

namespace {

constexpr Keyword kClass("class");
constexpr Keyword kFunction("func");
constexpr std::array kVariables = {Keyword("var"), Keyword("let")};

/// Tells line numbers of places that come in order.
class LineCounter {
public:
    explicit LineCounter(const char* begin) : countedTo_(begin) {}

    quint32 lineAt(const char* place) {
        constexpr std::ptrdiff_t kFew = 32; // which are not worth a call
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

/// The superclass of a header: on the first line that holds a match, the last one counts.
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

    /// Tries the rule where the beginning of the pattern may stand.
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

    /// Tries all lines where no beginning of the pattern leads to those with a match.
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

    /// Asks about the line of a place, once.
    void tryLineAt(const char* place) {
        const QByteArrayView line = lineAt(place);
        next_ = line.end();
        if (const auto superclass = search_->superclassOnLine(line)) {
            findings_.setSuperclass(findings_.keepText(*superclass));
        }
    }

    /// The line that a place lies on, with its line feed.
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

    // With a plain base name.
    QByteArray foldedBaseName_;
    const char* lineEnd_ = nullptr; ///< of the line that holds the first match

    std::optional<SuperclassSearch> search_; ///< with another
};

/// One pass over one text.
class SourcePass {
public:
    /// `isWhole` tells whether the text is the whole file's, so that it has elements.
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
            superclass_->tryAt(place);
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
            name = writtenName(match, keywords, appended);
        }
        addElement(type, match.keyword.begin(), name);
    }

    /// No match holds a line feed that would have to go too.
    QByteArrayView writtenName(const DeclarationMatch& match, Keywords keywords,
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
    std::optional<SuperclassRule> superclass_; ///< of a header
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

/// Calls `pass.visit` for every candidate of the text, in order; for the last bytes of the text as
/// if NUL bytes followed.
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
    /// As many as the processor's nearest memory holds beside everything else.
    static constexpr qsizetype kBlocksAtOnce = 64;

    /// The bytes to search may be a copy of those at the place.
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

/// The best that the processor has.
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
    if (!isWhole) {
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
