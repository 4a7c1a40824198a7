#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>

#include <chrono>

namespace navrel {

/// How long an editor that did not answer is left alone: it would cost its time limit again with
/// every question, twice a second, for as long as it is stopped.
inline constexpr std::chrono::milliseconds kSilentEditorLeftAlone{10'000};

/// How long the last answer of an editor that is left alone stands against other editors: a little
/// longer, so that it has been asked again by then.
inline std::chrono::milliseconds answerStandsFor(std::chrono::milliseconds leftAloneFor) {
    return leftAloneFor * 6 / 5;
}

/// The editors that did not answer lately and are not asked for a while. One thread at a time.
class SilentEditors {
public:
    explicit SilentEditors(std::chrono::milliseconds leftAloneFor) : leftAloneFor_(leftAloneFor) {}

    bool contains(const QByteArray& name) const {
        const auto found = until_.find(name);
        return found != until_.end() && !found->hasExpired();
    }

    void add(const QByteArray& name) {
        until_.removeIf([](const auto& entry) { return entry.value().hasExpired(); });
        until_.insert(name, QDeadlineTimer(leftAloneFor_));
    }

private:
    const std::chrono::milliseconds leftAloneFor_;
    QHash<QByteArray, QDeadlineTimer> until_;
};

} // namespace navrel
