#include "app/EditorFacts.h"

#include "project/Editor.h"
#include "support/core/MainThread.h"

namespace navrel {

namespace {

using State = ProgramFacts::Editor::State;

State stateOf(Editor::Presence presence) {
    switch (presence) {
    case Editor::Presence::silent:
        return State::silent;
    case Editor::Presence::stopped:
        return State::stopped;
    case Editor::Presence::answers:
        break;
    }
    return State::follows;
}

} // namespace

ProgramFacts::Editor editorFacts(Editor& editor, bool isAsked) {
    NAVREL_ASSERT_MAIN_THREAD();
    ProgramFacts::Editor facts;
    facts.name = editor.name();
    if (editor.position() || !facts.name.isEmpty()) {
        facts.state = stateOf(editor.presence());
    } else if (isAsked) {
        facts.state = State::none;
    }
    return facts;
}

} // namespace navrel
