#pragma once

#include "app/ProgramFacts.h"

#include <QString>

#include <vector>

namespace navrel {

/// What one part of the program is up to, for users to read. The same words appear in the terminal,
/// in windows and in browsers.
struct StateSentence {
    enum class Part { project, device, editor, browsers, codeMap, update };
    enum class Level {
        good,    ///< it works
        idle,    ///< nothing is amiss, and nothing is there
        warning, ///< it does not work, and the user can do something about it
        error,   ///< nothing can be shown until somebody does
    };

    Part part = Part::project;
    Level level = Level::good;
    QString text; ///< one sentence: what is the case
    QString hint; ///< one sentence: what to do; empty where nothing is to be done

    bool operator==(const StateSentence&) const = default;
};

/// "Project", "Device" …
QString titleOf(StateSentence::Part part);

StateSentence sentenceOf(const ProgramFacts::Project& project);
StateSentence sentenceOf(const ProgramFacts::Device& device);
StateSentence sentenceOf(const ProgramFacts::Editor& editor);
StateSentence sentenceOf(const ProgramFacts::Browsers& browsers);
StateSentence sentenceOf(const ProgramFacts::CodeMap& codeMap);
StateSentence sentenceOf(const ProgramFacts::Update& update);

/// One sentence for each part, in the order of StateSentence::Part. Pure.
std::vector<StateSentence> stateSentences(const ProgramFacts& facts);

} // namespace navrel
