#include "support/text/RegularExpression.h"

#include <unicode/uregex.h>

#include <ctime>
#include <limits>

namespace navrel {

const QString kRegularExpressionErrorDomain = QStringLiteral("NavrelRegularExpressionErrorDomain");

namespace {

Error errorOfStatus(UErrorCode status) {
    return {kRegularExpressionErrorDomain, status, QString::fromLatin1(u_errorName(status))};
}

const UChar* unitsOf(QStringView text) {
    static constexpr UChar kNoText = 0; // ICU takes no null pointer, not even for an empty text
    return text.isEmpty() ? &kNoText : reinterpret_cast<const UChar*>(text.utf16());
}

bool isTooLongForICU(QStringView text) {
    return text.size() > std::numeric_limits<int32_t>::max();
}

uint32_t flagsOf(quint32 options) {
    uint32_t flags = 0;
    if ((options & RegularExpression::kCaseInsensitive) != 0) {
        flags |= UREGEX_CASE_INSENSITIVE;
    }
    if ((options & RegularExpression::kDotMatchesLineSeparators) != 0) {
        flags |= UREGEX_DOTALL;
    }
    return flags;
}

/// Asked by ICU whether a search may go on.
class SearchLimit {
public:
    explicit SearchLimit(RegularExpression::Deadline deadline) : deadline_(deadline) {}

    bool isReached() const { return RegularExpression::Clock::now() >= deadline_; }

    /// ICU calls the one every few thousand steps of a match, the other for each place where a
    /// match is tried, most of which take less time than asking the clock. False ends the search.
    static UBool mayGoOnMatching(const void* limit, int32_t) {
        return !static_cast<const SearchLimit*>(limit)->isReached();
    }
    static UBool mayGoOnFinding(const void* limit, int64_t) {
        const auto* self = static_cast<const SearchLimit*>(limit);
        return ++self->places_ % kPlacesBetweenQuestions != 0 || !self->isReached();
    }

private:
    static constexpr quint32 kPlacesBetweenQuestions = 256;

    RegularExpression::Deadline deadline_;
    mutable quint32 places_ = 0; // ICU hands the limit on as const
};

void setLimit(URegularExpression* expression, const SearchLimit* limit, UErrorCode& status) {
    uregex_setMatchCallback(expression, limit != nullptr ? SearchLimit::mayGoOnMatching : nullptr,
                            limit, &status);
    uregex_setFindProgressCallback(
        expression, limit != nullptr ? SearchLimit::mayGoOnFinding : nullptr, limit, &status);
    if (limit != nullptr && limit->isReached()) {
        status = U_REGEX_STOPPED_BY_CALLER;
    }
}

RegularExpression::Match currentMatch(URegularExpression* expression, UErrorCode& status) {
    const int32_t groupCount = uregex_groupCount(expression, &status);
    RegularExpression::Match match;
    match.ranges.reserve(static_cast<std::size_t>(groupCount) + 1);
    for (int32_t group = 0; group <= groupCount; ++group) {
        const int32_t start = uregex_start(expression, group, &status);
        const int32_t end = uregex_end(expression, group, &status);
        match.ranges.push_back({start, end - start});
    }
    return match;
}

} // namespace

void RegularExpression::Closer::operator()(URegularExpression* expression) const {
    uregex_close(expression);
}

RegularExpression::Clock::time_point RegularExpression::Clock::now() {
    struct timespec time {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

std::variant<RegularExpression, Error> RegularExpression::compile(QStringView pattern,
                                                                  quint32 options) {
    if (isTooLongForICU(pattern)) {
        return errorOfStatus(U_REGEX_PATTERN_TOO_BIG);
    }
    UErrorCode status = U_ZERO_ERROR;
    Owner expression(uregex_open(unitsOf(pattern), static_cast<int32_t>(pattern.size()),
                                 flagsOf(options), nullptr, &status));
    if (U_FAILURE(status)) {
        return errorOfStatus(status);
    }
    return RegularExpression(std::move(expression));
}

RegularExpression::Matches RegularExpression::matchesIn(QStringView text,
                                                        std::optional<Deadline> deadline) {
    Matches result;
    if (isTooLongForICU(text)) {
        result.error = errorOfStatus(U_INDEX_OUTOFBOUNDS_ERROR);
        return result;
    }
    URegularExpression* const expression = expression_.get();
    UErrorCode status = U_ZERO_ERROR;
    const auto limit = deadline ? std::optional<SearchLimit>(*deadline) : std::nullopt;
    setLimit(expression, limit ? &*limit : nullptr, status);
    uregex_setText(expression, unitsOf(text), static_cast<int32_t>(text.size()), &status);
    while (U_SUCCESS(status) && uregex_findNext(expression, &status) != 0) {
        result.matches.push_back(currentMatch(expression, status));
    }
    if (U_FAILURE(status)) {
        result.error = errorOfStatus(status);
    }
    return result;
}

} // namespace navrel
