#include "editors/EditorChoice.h"

#include "editors/CodeCommandEditor.h"
#include "editors/DesktopEditor.h"
#include "editors/FollowedEditor.h"
#include "editors/emacs/EmacsEditor.h"
#include "editors/hooks/HookSocket.h"
#include "editors/hooks/HookedEditor.h"
#include "editors/kate/KateEditor.h"
#include "editors/neovim/NeovimEditor.h"
#include "editors/xcode/XcodeEditor.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QDBusConnection>
#include <QFileInfo>

#include <utility>
#include <vector>

namespace navrel {

namespace {

using Listing = ActiveProject::ListingProject;

std::shared_ptr<Editor> following(std::vector<std::shared_ptr<RunningEditor>> editors,
                                  const Listing& listing,
                                  std::shared_ptr<Editor> lastResort = nullptr) {
    return std::make_shared<FollowedEditor>(std::move(editors), std::move(lastResort), listing);
}

/// The editors with plug-ins, as one; none where there is no folder for their socket.
std::vector<std::shared_ptr<RunningEditor>> hookedEditors() {
    const auto path = HookSocket::standardPath();
    if (!path) {
        return {};
    }
    return {std::make_shared<HookedEditor>(*path)};
}

std::shared_ptr<KateEditor> kate() {
    return std::make_shared<KateEditor>(QDBusConnection::sessionBus());
}

std::shared_ptr<Editor> detectedEditor(const Listing& listing) {
    if (QFileInfo(XcodeEditor::Tools().osascript).isExecutable()) {
        return std::make_shared<XcodeEditor>();
    }
    std::vector<std::shared_ptr<RunningEditor>> editors = hookedEditors();
    editors.push_back(std::make_shared<NeovimEditor>());
    editors.push_back(std::make_shared<EmacsEditor>());
    editors.push_back(kate());
    editors.push_back(std::make_shared<CodeCommandEditor>());
    return following(std::move(editors), listing, std::make_shared<DesktopEditor>());
}

} // namespace

std::shared_ptr<Editor> chooseEditor(const ActiveProject::ListingProject& listing) {
    NAVREL_ASSERT_MAIN_THREAD();
    const QString name = qEnvironmentVariable("NAVREL_EDITOR");
    if (name == QStringLiteral("xcode")) {
        return std::make_shared<XcodeEditor>();
    }
    if (name == QStringLiteral("neovim")) {
        return following({std::make_shared<NeovimEditor>()}, listing);
    }
    if (name == QStringLiteral("emacs")) {
        return following({std::make_shared<EmacsEditor>()}, listing);
    }
    if (name == QStringLiteral("kate")) {
        return following({kate()}, listing);
    }
    if (name == QStringLiteral("plugin") || name == QStringLiteral("vim")) {
        return following(hookedEditors(), listing);
    }
    if (name == QStringLiteral("vscode")) {
        auto editors = hookedEditors();
        editors.push_back(std::make_shared<CodeCommandEditor>());
        return following(std::move(editors), listing);
    }
    if (name == QStringLiteral("desktop")) {
        return std::make_shared<DesktopEditor>();
    }
    if (!name.isEmpty()) {
        log(QStringLiteral("NAVREL_EDITOR names no editor: %1").arg(name));
    }
    return detectedEditor(listing);
}

} // namespace navrel
