#include "tests/scanning/plain/PlainScan.h"

#include "support/text/UTF8.h"

#include <utility>

namespace navrel {

namespace {

/// The next line with its line feed, taken off the beginning of `rest`.
QByteArrayView takeLine(QByteArrayView& rest) {
    const qsizetype lineFeed = rest.indexOf('\n');
    const qsizetype length = lineFeed < 0 ? rest.size() : lineFeed + 1;
    const QByteArrayView line = rest.first(length);
    rest = rest.sliced(length);
    return line;
}

QString withoutAll(QString text, std::initializer_list<const char*> removed) {
    for (const char* part : removed) {
        text.remove(QLatin1StringView(part));
    }
    return text;
}

} // namespace

PlainScan::PlainScan(ScanPatterns patterns)
    : patterns_(std::move(patterns)), shortcutLine_(patterns_.shortcutLine) {}

RegularExpression& PlainScan::expressionOf(const ScanPattern& pattern) {
    const auto known = expressions_.find(pattern.text);
    return known != expressions_.end()
               ? known->second
               : expressions_.emplace(pattern.text, compiled(pattern)).first->second;
}

std::optional<Error> PlainScan::scan(QByteArrayView text, const SourceName& name,
                                     SourceFindings& findings,
                                     std::optional<RegularExpression::Steps> atMost) {
    findings.clear();
    begin(findings);
    atMost_ = atMost;
    scanLines(text, name);
    if (const auto wholeText = decodeUTF8(text)) {
        scanWholeText(*wholeText, name.kind());
    }
    return error_;
}

void PlainScan::addElements(QByteArrayView text, SourceKind kind, SourceFindings& findings) {
    begin(findings);
    if (const auto wholeText = decodeUTF8(text)) {
        scanWholeText(*wholeText, kind);
    }
}

void PlainScan::begin(SourceFindings& findings) {
    findings_ = &findings;
    atMost_.reset();
    error_.reset();
}

void PlainScan::scanLines(QByteArrayView text, const SourceName& name) {
    std::optional<SuperclassExpression> superclass;
    if (name.kind() == SourceKind::Header) {
        superclass = SuperclassExpression::forBaseName(name.baseName(), patterns_.superclass);
    }
    quint32 lineNumber = 1;
    for (QByteArrayView rest = text; !rest.isEmpty(); ++lineNumber) {
        const QByteArrayView line = takeLine(rest);
        if (!isValidUTF8(line)) {
            return;
        }
        if (superclass && !findings_->superclass()) {
            if (const auto found = superclass->superclassOnLine(line, atMost_)) {
                findings_->setSuperclass(findings_->keepText(*found));
            }
            error_ = error_ ? error_ : superclass->error();
        }
        if (const auto found = shortcutLine_.shortcutOnLine(line)) {
            findings_->addShortcut({lineNumber, findings_->keepText(*found)});
        }
    }
}

/// Adds an element for each match. `makeElement` is given the texts of the match and of its groups.
template <typename MakeElement>
void PlainScan::scanFor(const ScanPattern& pattern, const QString& text, MakeElement makeElement) {
    const auto found = expressionOf(pattern).matchesIn(text, atMost_);
    error_ = error_ ? error_ : found.error;
    qsizetype countedTo = 0;
    quint32 line = 1;
    for (const auto& match : found.matches) {
        const qsizetype start = match.ranges[0].location;
        line += static_cast<quint32>(
            QStringView(text).sliced(countedTo, start - countedTo).count(u'\n'));
        countedTo = start;
        const auto group = [&](std::size_t index) {
            const auto range = match.ranges[index];
            return text.mid(range.location, range.length);
        };
        const std::pair<ElementType, QString> element = makeElement(group);
        const QByteArray name = element.second.toUtf8();
        findings_->addElement({element.first, line, findings_->keepText(name)});
    }
}

void PlainScan::scanWholeText(const QString& text, SourceKind kind) {
    if (kind == SourceKind::Swift) {
        scanFor(patterns_.swiftClass, text, [](const auto& group) {
            return std::pair(ElementType::Class, withoutAll(group(0), {"\n", "class", " "}));
        });
        scanFor(patterns_.swiftFunction, text, [](const auto& group) {
            return std::pair(ElementType::Method,
                             withoutAll(group(0), {"\n", "func", " "}) + QStringLiteral("()"));
        });
        scanFor(patterns_.swiftVariable, text, [](const auto& group) {
            return std::pair(ElementType::Property, withoutAll(group(0), {"var", "let", " "}));
        });
    } else {
        scanFor(kind == SourceKind::Header ? patterns_.methodDeclaration : patterns_.method, text,
                [this](const auto& group) {
                    return std::pair(ElementType::Method, methodName(group(0)));
                });
        scanFor(patterns_.property, text,
                [](const auto& group) { return std::pair(ElementType::Property, group(2)); });
    }
    scanFor(patterns_.mark, text, [](const auto& group) {
        const bool isMark = group(1).toLower().contains(QStringLiteral("mark"));
        return std::pair(isMark ? ElementType::Mark : ElementType::Warning, group(2));
    });
    scanFor(patterns_.shortcut, text,
            [](const auto& group) { return std::pair(ElementType::Shortcut, group(2)); });
}

/// The selector as people write it: of each argument only the colon stays, types are left out.
QString PlainScan::methodName(QString match) {
    match = withoutMatches(patterns_.argument, std::move(match), QStringLiteral(":"));
    match = withoutMatches(patterns_.typeCast, std::move(match), QString());
    return withoutAll(std::move(match), {" ", "{", ";"});
}

QString PlainScan::withoutMatches(const ScanPattern& pattern, QString text,
                                  const QString& substitute) {
    const auto found = expressionOf(pattern).matchesIn(text, atMost_);
    error_ = error_ ? error_ : found.error;
    for (auto match = found.matches.rbegin(); match != found.matches.rend(); ++match) {
        text.replace(match->ranges[0].location, match->ranges[0].length, substitute);
    }
    return text;
}

} // namespace navrel
