#pragma once

#include "scanning/ShortcutExpression.h"
#include "scanning/SourceFindings.h"
#include "scanning/SuperclassExpression.h"
#include "tests/scanning/plain/ScanPatterns.h"

#include <map>
#include <optional>

namespace navrel {

/// The patterns applied as they are written, one after the other, by ICU: slow, and the measure of
/// what `scanSource` must find. One thread at a time.
class PlainScan {
public:
    /// `patterns` must be valid; others than the default ones are for checks.
    explicit PlainScan(ScanPatterns patterns = {});

    /// Fills `findings`, cleared before, with what the text of a file of that name holds. An error
    /// (ICU gave up on a text made to backtrack, or a search took more than `atMost` steps, nil
    /// being no limit) says that the findings are incomplete.
    std::optional<Error> scan(QByteArrayView text, const SourceName& name, SourceFindings& findings,
                              std::optional<RegularExpression::Steps> atMost);

    /// Adds the elements alone, without a limit; none of a text that is not UTF-8.
    void addElements(QByteArrayView text, SourceKind kind, SourceFindings& findings);

private:
    RegularExpression& expressionOf(const ScanPattern& pattern);
    void begin(SourceFindings& findings);
    void scanLines(QByteArrayView text, const SourceName& name);
    void scanWholeText(const QString& text, SourceKind kind);
    template <typename MakeElement>
    void scanFor(const ScanPattern& pattern, const QString& text, MakeElement makeElement);
    QString methodName(QString match);
    QString withoutMatches(const ScanPattern& pattern, QString text, const QString& substitute);

    ScanPatterns patterns_;
    ShortcutExpression shortcutLine_;
    std::map<QString, RegularExpression> expressions_; ///< those that were needed, by pattern

    // Of the scan under way.
    SourceFindings* findings_ = nullptr;
    std::optional<RegularExpression::Steps> atMost_; ///< for each search
    std::optional<Error> error_;
};

} // namespace navrel
