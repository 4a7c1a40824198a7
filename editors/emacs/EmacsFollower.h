#pragma once

#include "editors/RunningEditor.h"

#include <QByteArray>
#include <QProcess>
#include <QTimer>

#include <optional>

namespace navrel {

/// The place in what Emacs printed for `emacsPlaceExpression`; nothing for anything else.
std::optional<EditorPlace> emacsPlaceFrom(const QByteArray& printed);

/// Asks the Emacs that `emacsclient` finds where its user is, twice a second, from its making to
/// its end, and tells when that has changed. One question at a time: an Emacs that is stopped costs
/// one waiting client. Main thread; never blocks.
class EmacsFollower {
public:
    explicit EmacsFollower(RunningEditor::PlaceObserver observer);
    ~EmacsFollower();
    EmacsFollower(const EmacsFollower&) = delete;
    EmacsFollower& operator=(const EmacsFollower&) = delete;

private:
    void ask();
    void hear();

    const RunningEditor::PlaceObserver observer_;
    std::optional<EditorPlace> last_;
    bool isFirstAnswer_ = true;
    QProcess client_;
    QTimer timer_;
};

} // namespace navrel
