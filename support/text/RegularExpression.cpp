#include "support/text/RegularExpression.h"

#include <unicode/uregex.h>

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

/// Counts the steps of one search and tells ICU, which asks, whether it may go on.
class StepCount {
public:
    explicit StepCount(RegularExpression::Steps atMost) : atMost_(atMost) {}

    RegularExpression::Steps steps() const {
        return stepsAtATime_ * RegularExpression::kStepsAtATime + places_;
    }

    /// ICU calls the one each time it has counted a fixed number of steps, with how often it has,
    /// the other for each place where a match is tried. False ends the search.
    static UBool mayGoOnMatching(const void* count, int32_t stepsAtATime) {
        const auto* self = static_cast<const StepCount*>(count);
        self->stepsAtATime_ = stepsAtATime;
        return self->mayGoOn();
    }
    static UBool mayGoOnFinding(const void* count, int64_t) {
        const auto* self = static_cast<const StepCount*>(count);
        ++self->places_;
        return self->mayGoOn();
    }

private:
    bool mayGoOn() const { return steps() <= atMost_; }

    RegularExpression::Steps atMost_;
    // ICU hands the object on as const.
    mutable RegularExpression::Steps stepsAtATime_ = 0;
    mutable RegularExpression::Steps places_ = 0;
};

void setStepCount(URegularExpression* expression, const StepCount* count, UErrorCode& status) {
    uregex_setMatchCallback(expression, count != nullptr ? StepCount::mayGoOnMatching : nullptr,
                            count, &status);
    uregex_setFindProgressCallback(
        expression, count != nullptr ? StepCount::mayGoOnFinding : nullptr, count, &status);
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
                                                        std::optional<Steps> atMost) {
    Matches result;
    if (isTooLongForICU(text)) {
        result.error = errorOfStatus(U_INDEX_OUTOFBOUNDS_ERROR);
        return result;
    }
    URegularExpression* const expression = expression_.get();
    UErrorCode status = U_ZERO_ERROR;
    const auto count = atMost ? std::optional<StepCount>(*atMost) : std::nullopt;
    setStepCount(expression, count ? &*count : nullptr, status);
    uregex_setText(expression, unitsOf(text), static_cast<int32_t>(text.size()), &status);
    while (U_SUCCESS(status) && uregex_findNext(expression, &status) != 0) {
        result.matches.push_back(currentMatch(expression, status));
    }
    result.steps = count ? count->steps() : 0;
    if (U_FAILURE(status)) {
        result.error = errorOfStatus(status);
    }
    return result;
}

} // namespace navrel
