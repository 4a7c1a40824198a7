#include "project/EditorRefusal.h"

#include "support/core/Assertion.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

using Kind = EditorOutcome::Kind;

/// Stands for the editor's name.
const QString kName = QStringLiteral("%1");

struct Sentences {
    EditorRefusal refusal;
    Kind kind;
    const char* reason; ///< empty for the editor's own
    const char* hint;
};

constexpr std::array kSentences{
    Sentences{EditorRefusal::noEditorAnswers, Kind::notRunning, "No editor answers.",
              "Start Neovim, Emacs with its server, or an editor with Navrel's plug-in, and try "
              "again."},
    Sentences{EditorRefusal::noWayBack, Kind::refused, "There is no way back yet.",
              "Open a place from here first: back leads to where the editor was before."},
    Sentences{EditorRefusal::cannotGoBack, Kind::refused,
              "This editor cannot be taken back from here.",
              "Use the editor's own command for going back."},
    Sentences{EditorRefusal::noSuchPath, Kind::refused, "That names no file.",
              "Choose the file in Navrel's tree."},
    Sentences{EditorRefusal::tooManyWait, Kind::refused, "Too many files wait to be opened.",
              "Wait until the editor has opened those, and try again."},
    Sentences{EditorRefusal::waitsForAKey, Kind::asksUser, "%1 waits for a key.",
              "Answer its question, or press Esc there, and try again."},
    Sentences{EditorRefusal::staysInItsMode, Kind::asksUser, "%1 does not leave its mode.",
              "Finish there what you began, and try again."},
    Sentences{EditorRefusal::doesNotAnswer, Kind::asksUser, "%1 does not answer.",
              "Finish the command or the prompt that it waits in; if you stopped it, type fg in "
              "its shell."},
    Sentences{EditorRefusal::answersLate, Kind::asksUser, "%1 did not answer in time.",
              "Look at it: it may be there by now, or wait for you."},
    Sentences{EditorRefusal::saysWhy, Kind::refused, "",
              "Look at it, finish what it shows, and try again."},
    Sentences{EditorRefusal::windowCloses, Kind::refused, "%1 closed its window.",
              "Open the project's folder in an editor, and try again."},
    Sentences{EditorRefusal::mightRunTheFile, Kind::refused,
              "No editor answers, and the desktop might run this file.",
              "Start an editor, and try again."},
    Sentences{EditorRefusal::hasNoOpener, Kind::refused, "The desktop has no way to open files.",
              "Start an editor, or install xdg-utils, and try again."},
};

const Sentences& sentencesOf(EditorRefusal refusal) {
    const auto* const found =
        std::find_if(kSentences.begin(), kSentences.end(),
                     [refusal](const Sentences& each) { return each.refusal == refusal; });
    NAVREL_ASSERT(found != kSentences.end());
    return *found;
}

/// What an editor says, as a sentence that names it.
QString sayingOf(const QString& editor, const QString& words) {
    QString text = words.trimmed();
    while (text.endsWith(u'.')) {
        text.chop(1);
    }
    if (text.isEmpty()) {
        return editor + QStringLiteral(" gave no reason.");
    }
    const bool hasName = text.startsWith(editor + u' ') || text.startsWith(editor + u':');
    return (hasName ? text : editor + QStringLiteral(": ") + text) + u'.';
}

} // namespace

std::vector<EditorRefusal> allEditorRefusals() {
    std::vector<EditorRefusal> all;
    for (const Sentences& each : kSentences) {
        all.push_back(each.refusal);
    }
    return all;
}

EditorOutcome outcomeOf(EditorRefusal refusal, const QString& editor, const QString& words) {
    const Sentences& sentences = sentencesOf(refusal);
    const QString name = editor.isEmpty() ? QStringLiteral("The editor") : editor;
    const QString reason = QString::fromUtf8(sentences.reason);
    return {sentences.kind, editor,
            refusal == EditorRefusal::saysWhy ? sayingOf(name, words)
                                              : QString(reason).replace(kName, name),
            QString::fromUtf8(sentences.hint)};
}

} // namespace navrel
