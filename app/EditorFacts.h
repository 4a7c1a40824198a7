#pragma once

#include "app/ProgramFacts.h"

namespace navrel {

class Editor;

/// What is the case with the editor, as far as it has been heard. `isAsked` says whether anything
/// asks it at all: a client that follows it, or the choice of the project. Asks nobody, and never
/// blocks. Main thread.
ProgramFacts::Editor editorFacts(Editor& editor, bool isAsked);

} // namespace navrel
