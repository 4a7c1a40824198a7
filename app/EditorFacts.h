#pragma once

#include "app/ProgramFacts.h"

namespace navrel {

class Editor;

/// How the editor stood when it was last heard from. `isAsked` says whether Navrel asks the editor
/// at all: for a client that follows it, or to choose the project. Does not ask the editor itself,
/// and never blocks. Main thread.
ProgramFacts::Editor editorFacts(Editor& editor, bool isAsked);

} // namespace navrel
