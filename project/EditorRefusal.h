#pragma once

#include "project/Editor.h"

#include <QString>

#include <vector>

namespace navrel {

/// Why an editor was not led to a place, or back from one.
enum class EditorRefusal {
    noEditorAnswers,
    noWayBack,       ///< no jump to go back from, and no editor with a list of its own
    cannotGoBack,    ///< this kind of editor takes no such request
    noSuchPath,      ///< it cannot be the path of any file
    tooManyWait,     ///< requests before this one have not ended
    waitsForAKey,    ///< half a command or a prompt
    staysInItsMode,  ///< the keys that leave every mode did not
    doesNotAnswer,   ///< before it was asked for the place
    answersLate,     ///< after it was: it may still go there
    saysWhy,         ///< for a reason in the editor's own words
    windowCloses,    ///< while it was asked
    mightRunTheFile, ///< the desktop's opener, which is no editor
    hasNoOpener,     ///< the desktop
};

/// All of them, in their order.
std::vector<EditorRefusal> allEditorRefusals();

/// The outcome for users: what kept the editor from it, and a hint that says what to do about it.
/// `editor` is its name; empty where that is not known. `words` are the editor's own, for
/// `saysWhy`. Pure.
EditorOutcome outcomeOf(EditorRefusal refusal, const QString& editor = {},
                        const QString& words = {});

} // namespace navrel
