#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace navrel {

class Error;

/// What `runAlert` returns for the first button. The next ones are 1001, 1002 …
inline constexpr int kAlertFirstButtonReturn = 1000;

/// The dialogs that the project model shows. All are modal: a call blocks until the user has
/// answered, while the event loop runs. Main thread.
class ProjectDialogs {
public:
    virtual ~ProjectDialogs() = default;

    /// Lets the user pick one file of the given types (extensions without the dot). Returns its
    /// path, or nil if the user cancelled.
    virtual std::optional<QString> runOpenPanel(const QString& title,
                                                const QStringList& allowedFileTypes) = 0;

    /// Shows an error. True if that dealt with it, and the caller need not do more.
    virtual bool presentError(const Error& error) = 0;

    /// Asks a question, with the buttons in the given order. Returns `kAlertFirstButtonReturn` plus
    /// the 0-based position of the one that the user pressed.
    virtual int runAlert(const QString& message, const QString& informativeText,
                         const QStringList& buttons) = 0;

protected:
    ProjectDialogs() = default;
    ProjectDialogs(const ProjectDialogs&) = default;
    ProjectDialogs& operator=(const ProjectDialogs&) = default;
};

} // namespace navrel
