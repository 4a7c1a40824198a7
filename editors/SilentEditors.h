#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>
#include <QHash>

#include <chrono>
#include <mutex>

namespace navrel {

/// How long an editor that did not answer is left alone: it would cost its time limit again with
/// every question, twice a second, for as long as it is stopped.
inline constexpr std::chrono::milliseconds kSilentEditorLeftAlone{10'000};

/// How long the last answer of an editor that is left alone stands against other editors: a little
/// longer, so that it has been asked again by then.
inline std::chrono::milliseconds answerStandsFor(std::chrono::milliseconds leftAloneFor) {
    return leftAloneFor * 6 / 5;
}

/// The editors that did not answer lately and are not asked for a while. Any thread.
class SilentEditors {
public:
    explicit SilentEditors(std::chrono::milliseconds leftAloneFor) : leftAloneFor_(leftAloneFor) {}

    bool contains(const QByteArray& name) const {
        const std::lock_guard lock(mutex_);
        const auto found = until_.find(name);
        return found != until_.end() && !found->hasExpired();
    }
    /// Those of the names that are in here, in their order.
    QByteArrayList only(const QByteArrayList& names) const { return where(names, true); }
    /// The others, in their order.
    QByteArrayList without(const QByteArrayList& names) const { return where(names, false); }

    void add(const QByteArray& name) {
        const std::lock_guard lock(mutex_);
        until_.removeIf([](const auto& entry) { return entry.value().hasExpired(); });
        until_.insert(name, QDeadlineTimer(leftAloneFor_));
    }
    void remove(const QByteArray& name) {
        const std::lock_guard lock(mutex_);
        until_.remove(name);
    }

private:
    QByteArrayList where(const QByteArrayList& names, bool isSilent) const {
        QByteArrayList found;
        for (const QByteArray& name : names) {
            if (contains(name) == isSilent) {
                found.append(name);
            }
        }
        return found;
    }

    const std::chrono::milliseconds leftAloneFor_;
    mutable std::mutex mutex_;
    QHash<QByteArray, QDeadlineTimer> until_;
};

} // namespace navrel
