#include "companion/terminal/Completion.h"

#include "companion/terminal/CommandTable.h"

#include <algorithm>

namespace navrel {

namespace {

QStringList beginningWith(const QString& part, const QStringList& words) {
    QStringList result;
    for (const QString& word : words) {
        if (word.startsWith(part, Qt::CaseInsensitive)) {
            result.append(word);
        }
    }
    result.sort(Qt::CaseInsensitive);
    result.removeDuplicates();
    return result;
}

QStringList commandNames() {
    QStringList names;
    for (const CommandInfo& command : commandTable()) {
        names.append(command.name);
    }
    return names;
}

/// Methods without their - or +, as they are found too, for a user who types none.
QStringList asTyped(const QString& part, QStringList symbols) {
    const auto isSign = [](const QString& text) {
        return text.startsWith(u'-') || text.startsWith(u'+');
    };
    if (!part.isEmpty() && !isSign(part)) {
        for (QString& symbol : symbols) {
            symbol = isSign(symbol) ? symbol.sliced(1) : symbol;
        }
    }
    return symbols;
}

Completion placeCompletion(const QString& line, qsizetype begin, const CompletionWords& words) {
    const QString part = line.sliced(begin);
    const qsizetype colon = part.indexOf(u':');
    if (colon <= 0) {
        return {begin, beginningWith(part, words.files())};
    }
    const QString symbol = part.sliced(colon + 1);
    return {begin + colon + 1,
            beginningWith(symbol, asTyped(symbol, words.symbols(part.first(colon))))};
}

Completion argumentCompletion(const CommandInfo& command, const QString& line, qsizetype begin,
                              const CompletionWords& words) {
    const QString part = line.sliced(begin);
    switch (command.argument) {
    case ArgumentKind::file:
        return {begin, beginningWith(part, words.files())};
    case ArgumentKind::place:
        return placeCompletion(line, begin, words);
    case ArgumentKind::group:
        return {begin, beginningWith(part, words.groups())};
    case ArgumentKind::type:
        return {begin, beginningWith(part, words.types())};
    case ArgumentKind::extension:
        return {begin, beginningWith(part, words.extensions())};
    case ArgumentKind::command:
        return {begin, beginningWith(part, commandNames())};
    case ArgumentKind::none:
    case ArgumentKind::text:
        break;
    }
    return {begin, {}};
}

qsizetype skipBlanks(const QString& line, qsizetype at) {
    while (at < line.size() && line.at(at) == u' ') {
        ++at;
    }
    return at;
}

} // namespace

QString Completion::common() const {
    QString common = candidates.value(0);
    for (const QString& candidate : candidates) {
        qsizetype same = 0;
        while (same < std::min(common.size(), candidate.size()) &&
               common.at(same).toCaseFolded() == candidate.at(same).toCaseFolded()) {
            ++same;
        }
        common.truncate(same);
    }
    return common;
}

Completion completionOf(const QString& line, const CompletionWords& words) {
    const qsizetype begin = skipBlanks(line, 0);
    const qsizetype blank = line.indexOf(u' ', begin);
    if (blank < 0) {
        return {begin, beginningWith(line.sliced(begin), commandNames())};
    }
    const CommandInfo* const command = commandNamed(line.sliced(begin, blank - begin));
    return command == nullptr ? Completion()
                              : argumentCompletion(*command, line, skipBlanks(line, blank), words);
}

} // namespace navrel
