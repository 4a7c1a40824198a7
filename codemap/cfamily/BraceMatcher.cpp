#include "codemap/cfamily/BraceMatcher.h"

#include "codemap/cfamily/Directive.h"
#include "codemap/cfamily/Lexer.h"

#include <algorithm>

namespace navrel::cfamily {

std::size_t BraceMatcher::closingOf(std::size_t opening, Lexer& lexer) {
    if (opening >= end_) {
        search(opening, lexer);
    }
    const auto found = std::lower_bound(
        pairs_.begin(), pairs_.end(), opening,
        [](const auto& pair, std::size_t position) { return pair.first < position; });
    return found != pairs_.end() && found->first == opening ? found->second : lexer.text().size();
}

void BraceMatcher::search(std::size_t opening, Lexer& lexer) {
    pairs_.clear();
    open_.clear();
    conditions_.clear();
    lexer.setQuiet(true);
    lexer.setPosition(opening);
    do {
        const BodyEvent event = lexer.nextInBody(false);
        end_ = event.end;
        if (event.kind == BodyEvent::Kind::open) {
            open_.push_back(pairs_.size());
            pairs_.emplace_back(event.begin, lexer.text().size());
        } else if (event.kind == BodyEvent::Kind::close && !open_.empty()) {
            pairs_[open_.back()].second = event.begin;
            open_.pop_back();
        } else if (event.kind == BodyEvent::Kind::directive) {
            readDirective(lexer.text().substr(event.begin, event.end - event.begin));
        } else {
            break;
        }
    } while (!open_.empty());
    lexer.setQuiet(false);
}

/// Each branch of a condition begins with the braces that were open before the first.
void BraceMatcher::readDirective(std::string_view line) {
    switch (navrel::cfamily::readDirective(line).kind) {
    case Directive::Kind::condition:
        conditions_.push_back(open_.size());
        return;
    case Directive::Kind::alternative:
        if (!conditions_.empty() && conditions_.back() < open_.size()) {
            open_.resize(conditions_.back());
        }
        return;
    case Directive::Kind::endOfCondition:
        if (!conditions_.empty()) {
            conditions_.pop_back();
        }
        return;
    default:
        return;
    }
}

} // namespace navrel::cfamily
