#include "editors/EditorChoice.h"

#include "editors/DesktopEditor.h"
#include "editors/EmacsEditor.h"
#include "editors/FollowedEditor.h"
#include "editors/NeovimEditor.h"
#include "editors/XcodeEditor.h"
#include "support/Log.h"

#include <QFileInfo>

#include <utility>
#include <vector>

namespace navrel {

namespace {

std::shared_ptr<Editor> following(std::vector<std::shared_ptr<RunningEditor>> editors,
                                  std::shared_ptr<Editor> lastResort = nullptr) {
    return std::make_shared<FollowedEditor>(std::move(editors), std::move(lastResort));
}

std::shared_ptr<Editor> detectedEditor() {
    if (QFileInfo(XcodeEditor::Tools().osascript).isExecutable()) {
        return std::make_shared<XcodeEditor>();
    }
    return following({std::make_shared<NeovimEditor>(), std::make_shared<EmacsEditor>()},
                     std::make_shared<DesktopEditor>());
}

} // namespace

std::shared_ptr<Editor> chooseEditor() {
    const QString name = qEnvironmentVariable("NAVREL_EDITOR");
    if (name == QStringLiteral("xcode")) {
        return std::make_shared<XcodeEditor>();
    }
    if (name == QStringLiteral("neovim")) {
        return following({std::make_shared<NeovimEditor>()});
    }
    if (name == QStringLiteral("emacs")) {
        return following({std::make_shared<EmacsEditor>()});
    }
    if (name == QStringLiteral("desktop")) {
        return std::make_shared<DesktopEditor>();
    }
    if (!name.isEmpty()) {
        log(QStringLiteral("NAVREL_EDITOR names no editor: %1").arg(name));
    }
    return detectedEditor();
}

} // namespace navrel
