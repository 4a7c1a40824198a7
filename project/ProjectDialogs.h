#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace navrel {

class Error;

/// What `runAlert` returns for the first button; each further one is one more.
inline constexpr int kAlertFirstButtonReturn = 1000;

/// The dialogs that the project model shows. All of them are modal: a call returns when the user
/// has answered. Main thread.
class ProjectDialogs {
public:
    virtual ~ProjectDialogs() = default;

    /// Lets the user pick one file of the given types (extensions without the dot). Its path, or
    /// nil when the user cancelled.
    virtual std::optional<QString> runOpenPanel(const QString& title,
                                                const QStringList& allowedFileTypes) = 0;

    /// Shows an error. True when it was dealt with, so that the caller need not go on about it.
    virtual bool presentError(const Error& error) = 0;

    /// Asks a question with buttons in the given order; `kAlertFirstButtonReturn` plus the position
    /// of the one pressed.
    virtual int runAlert(const QString& message, const QString& informativeText,
                         const QStringList& buttons) = 0;

protected:
    ProjectDialogs() = default;
    ProjectDialogs(const ProjectDialogs&) = default;
    ProjectDialogs& operator=(const ProjectDialogs&) = default;
};

} // namespace navrel
