#include "project/Editor.h"

#include "support/core/MainThread.h"

namespace navrel {

void Editor::open(const QString& path, int line, int, OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    openFile(path, line > 0 ? std::optional(line) : std::nullopt);
    done({EditorOutcome::Kind::opened, {}, {}});
}

void Editor::back(OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    done({EditorOutcome::Kind::refused,
          {},
          QStringLiteral("This editor cannot be taken back from here.")});
}

} // namespace navrel
