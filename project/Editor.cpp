#include "project/Editor.h"

#include "project/EditorRefusal.h"
#include "support/core/MainThread.h"

namespace navrel {

void Editor::open(const QString& path, int line, int, OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    openFile(path, line > 0 ? std::optional(line) : std::nullopt);
    done({EditorOutcome::Kind::opened, {}, {}, {}});
}

void Editor::back(OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    done(outcomeOf(EditorRefusal::cannotGoBack));
}

} // namespace navrel
