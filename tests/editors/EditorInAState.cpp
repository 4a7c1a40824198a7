#include "tests/editors/EditorInAState.h"

#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"

#include <QFile>
#include <QRegularExpression>

#include <mutex>
#include <vector>

namespace navrel {

namespace {

QString nameOf(EditorInAState::Kind kind) {
    switch (kind) {
    case EditorInAState::Kind::neovim:
        return QStringLiteral("nvim");
    case EditorInAState::Kind::vim:
        return QStringLiteral("vim");
    case EditorInAState::Kind::emacs:
        break;
    }
    return QStringLiteral("emacs");
}

void typeIn(const Terminal& terminal, const char* keys) {
    for (const QString& key : QString::fromUtf8(keys).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        terminal.type({QString(key).replace(QLatin1Char('_'), QLatin1Char(' '))});
    }
}

} // namespace

bool EditorInAState::isAvailable(Kind kind) {
    return findTool(nameOf(kind)) && Terminal::isAvailable();
}

EditorInAState::EditorInAState(Kind kind, const EditorState& state) : kind_(kind), state_(state) {}

EditorInAState::~EditorInAState() {
    if (editor_ != nullptr) {
        editor_->onMove(nullptr);
    }
}

/// The first two words start an editor that neither listens nor connects.
QStringList EditorInAState::command() const {
    switch (kind_) {
    case Kind::neovim:
        return {nameOf(kind_), QStringLiteral("--clean"), QStringLiteral("--listen"),
                environment_.pathOf(QStringLiteral("xdg_runtime_dir/nvim.1.0"))};
    case Kind::vim:
        return {nameOf(kind_), QStringLiteral("--clean"), QStringLiteral("-S"),
                QStringLiteral(NAVREL_SOURCE_DIR "/editors/vim/plugin/navrel.vim")};
    case Kind::emacs:
        break;
    }
    return {nameOf(kind_), QStringLiteral("-Q"), QStringLiteral("-nw"), QStringLiteral("--eval"),
            QStringLiteral("(server-start)")};
}

QStringList EditorInAState::inFolder(const QStringList& command, const QString& file) const {
    return QStringList{QStringLiteral("env"), QStringLiteral("-C"),
                       environment_.pathOf(QStringLiteral("work"))} +
           command + QStringList{file};
}

bool EditorInAState::start(const MakeEditor& make) {
    ScratchEnvironment::write(fileA().toUtf8(), ScratchEnvironment::lines(200));
    ScratchEnvironment::write(fileB().toUtf8(), ScratchEnvironment::lines(200));
    // The other editor comes first: it is not to count as the one that the user moves in.
    if (!prepareTarget()) {
        return false;
    }
    editor_ = std::make_unique<FollowedEditor>(std::vector<std::shared_ptr<RunningEditor>>{make()},
                                               nullptr);
    editor_->onMove([this](const EditorPosition& position) { last_ = position; });
    return terminal_.start(inFolder(command(), fileA())) &&
           waitUntil([&] { return isAt(fileA(), 1); });
}

bool EditorInAState::prepareTarget() {
    if (state_.target == EditorState::Target::readOnly) {
        return QFile(fileB()).setPermissions(QFile::ReadOwner);
    }
    if (state_.target == EditorState::Target::openInAnotherEditor) {
        if (!other_.start(inFolder(command().mid(0, 2), fileB())) ||
            !other_.waitForScreen("line 2")) {
            return false;
        }
        typeIn(other_, "ihello");
        return other_.waitForScreen("hello");
    }
    return true;
}

bool EditorInAState::enter() const {
    typeIn(terminal_, state_.keys);
    return shows(state_.sign);
}

EditorOutcome EditorInAState::jump() {
    struct Shared {
        std::mutex mutex;
        std::optional<EditorOutcome> outcome;
    };
    const auto shared = std::make_shared<Shared>();
    editor_->open(fileB(), kLine, 0, [shared](const EditorOutcome& outcome) {
        const std::lock_guard lock(shared->mutex);
        shared->outcome = outcome;
    });
    const auto outcome = [&] {
        const std::lock_guard lock(shared->mutex);
        return shared->outcome;
    };
    waitUntil([&] { return outcome().has_value(); });
    return outcome().value_or(EditorOutcome());
}

bool EditorInAState::waitUntilAtTheLine() const {
    return waitUntil([&] { return isAt(fileB(), kLine); });
}

bool EditorInAState::showsWhatWasKept() const {
    typeIn(terminal_, state_.lookKeys);
    return shows(state_.kept);
}

bool EditorInAState::shows(const char* pattern) const {
    const QRegularExpression expression(QString::fromUtf8(pattern));
    return waitUntil(
        [&] { return expression.match(QString::fromUtf8(terminal_.screen())).hasMatch(); });
}

bool EditorInAState::isAt(const QString& file, int line) const {
    return last_ && last_->path == file && last_->line == line;
}

} // namespace navrel
