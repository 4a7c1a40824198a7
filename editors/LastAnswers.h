#pragma once

#include "editors/RunningEditor.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>
#include <QHash>

#include <chrono>

namespace navrel {

/// An editor is asked once a second. That it missed three questions is worth a word to the user,
/// who wonders why nothing moves; whose project is shown is decided later, with more patience.
inline constexpr std::chrono::milliseconds kAnswerIsFresh{3'000};

/// What each editor answered last. One that waits for the rest of a command, stands behind a prompt
/// or was stopped (Ctrl-Z in its terminal) still shows what it showed: to take it for gone would
/// make another project of it, or none, and build the store again, twice. One thread at a time.
class LastAnswers {
public:
    /// `standsFor` is how long an answer is worth as much as a new one of another editor.
    explicit LastAnswers(std::chrono::milliseconds standsFor) : standsFor_(standsFor) {}

    void add(const QByteArray& name, const QByteArray& path) {
        answers_.insert(name, {path, QDeadlineTimer(standsFor_), QDeadlineTimer(kAnswerIsFresh)});
    }
    /// For an editor that is not there any more.
    void forget(const QByteArray& name) { answers_.remove(name); }
    void forgetAllBut(const QByteArrayList& names) {
        answers_.removeIf([&](const auto& entry) { return !names.contains(entry.key()); });
    }

    /// What an editor that cannot answer now answered last; nil when it never did.
    std::optional<ActiveFile> of(const QByteArray& name) const {
        const auto found = answers_.find(name);
        if (found == answers_.end()) {
            return std::nullopt;
        }
        return ActiveFile{found->path, !found->stands.hasExpired(), !found->fresh.hasExpired()};
    }

private:
    struct Answer {
        QByteArray path;
        QDeadlineTimer stands;
        QDeadlineTimer fresh;
    };

    const std::chrono::milliseconds standsFor_;
    QHash<QByteArray, Answer> answers_;
};

} // namespace navrel
