#pragma once

#include "app/ProgramFacts.h"

#include <QString>

#include <vector>

namespace navrel {

/// The state of one part of the program, in words for users. The terminal, the windows and the
/// browsers all show the same words, as plain text.
struct StateSentence {
    enum class Part { project, device, editor, browsers, codeMap, update };
    enum class Level {
        good,    ///< it works
        idle,    ///< it is not in use, and nothing is wrong
        warning, ///< it does not work, and the user can fix that
        error,   ///< it does not work, and no client can show anything until the user fixes that
    };

    Part part = Part::project;
    Level level = Level::good;
    QString text; ///< one sentence: how this part stands
    QString hint; ///< one sentence: what the user can do about it; may be empty

    bool operator==(const StateSentence&) const = default;
};

/// The heading of a part's sentence: "Project", "Device" …
QString titleOf(StateSentence::Part part);

/// The sentence for one part. Pure; total: every value of the facts has one.
StateSentence sentenceOf(const ProgramFacts::Project& project);
StateSentence sentenceOf(const ProgramFacts::Device& device);
StateSentence sentenceOf(const ProgramFacts::Editor& editor);
StateSentence sentenceOf(const ProgramFacts::Browsers& browsers);
StateSentence sentenceOf(const ProgramFacts::CodeMap& codeMap);
StateSentence sentenceOf(const ProgramFacts::Update& update);

/// The sentences of all parts, in the order of StateSentence::Part. Pure.
std::vector<StateSentence> stateSentences(const ProgramFacts& facts);

} // namespace navrel
