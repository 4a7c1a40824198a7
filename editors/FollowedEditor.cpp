#include "editors/FollowedEditor.h"

#include "editors/Deadlines.h"
#include "editors/ProjectBundle.h"
#include "editors/RequestedPath.h"
#include "support/Log.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <utility>

namespace navrel {

FollowedEditor::FollowedEditor(std::vector<std::shared_ptr<RunningEditor>> editors,
                               std::shared_ptr<Editor> lastResort)
    : editors_(std::move(editors)), lastResort_(std::move(lastResort)),
      requests_(DispatchQueue::serialQueue(QStringLiteral("Editor requests"))) {}

FollowedEditor::~FollowedEditor() = default;

/// The bytes of the active file's path: empty where there is none, nil where no editor answers and
/// none that did is still there.
std::optional<QByteArray> FollowedEditor::activeFile() const {
    const QDeadlineTimer deadline(kAnswerAtMost);
    std::optional<ActiveFile> followed;
    std::size_t left = editors_.size();
    for (const auto& editor : editors_) {
        const auto file = editor->activeFile(shareOf(deadline, left--));
        if (file && (!followed || file->isCurrent)) {
            followed = file;
        }
        if (followed && followed->isCurrent) {
            break;
        }
    }
    if (!followed) {
        return std::nullopt;
    }
    // A buffer may bear any name; one that is no path is no file.
    return followed->path.startsWith('/') ? followed->path : QByteArrayLiteral("");
}

std::optional<QString> FollowedEditor::activeProjectPath() {
    const QDeadlineTimer deadline(kQueryAtMost);
    const auto file = activeFile();
    if (!file) {
        return lastResort_ != nullptr ? lastResort_->activeProjectPath() : std::nullopt;
    }
    if (const auto bundle = nearestProjectBundle(*file, deadline)) {
        // A folder whose name is not UTF-8 cannot be told of: it holds no project to be shown.
        activeProject_ = decodeUTF8(*bundle).value_or(QStringLiteral(""));
    }
    return activeProject_;
}

std::optional<QString> FollowedEditor::activeFileName() {
    const auto file = activeFile();
    if (!file) {
        return lastResort_ != nullptr ? lastResort_->activeFileName() : std::nullopt;
    }
    return decodeUTF8(lastPathComponent(*file)).value_or(QStringLiteral(""));
}

struct FollowedEditor::Request {
    std::vector<std::shared_ptr<RunningEditor>> editors;
    std::shared_ptr<Editor> lastResort;
    QString path;
    std::optional<int> line;

    void carryOut() const {
        const QDeadlineTimer deadline(kOpenAtMost);
        const QByteArray bytes = path.toUtf8();
        const bool isOpen = std::any_of(editors.begin(), editors.end(), [&](const auto& editor) {
            return editor->open(bytes, line, deadline);
        });
        if (isOpen) {
            return;
        }
        if (lastResort != nullptr) {
            lastResort->openFile(path, line);
        } else {
            log(QStringLiteral("No editor answers: %1 was not opened").arg(path));
        }
    }
};

void FollowedEditor::openFile(const QString& path, std::optional<int> line) {
    const auto absolutePath = requestedPath(path);
    if (!absolutePath) {
        return;
    }
    if (waiting_->load() >= kMaximumWaitingRequests) {
        log(QStringLiteral("Too many files wait to be opened: %1 was not").arg(path));
        return;
    }
    ++*waiting_;
    requests_->async(
        [request = Request{editors_, lastResort_, *absolutePath, line}, waiting = waiting_] {
            request.carryOut();
            --*waiting;
        });
}

} // namespace navrel
