#include "project/Editor.h"

namespace navrel {

void Editor::open(const QString& path, int line, int, OutcomeObserver done) {
    openFile(path, line > 0 ? std::optional(line) : std::nullopt);
    done({EditorOutcome::Kind::opened, {}, {}});
}

void Editor::back(OutcomeObserver done) {
    done({EditorOutcome::Kind::refused,
          {},
          QStringLiteral("This editor cannot be taken back from here.")});
}

} // namespace navrel
