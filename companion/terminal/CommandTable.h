#pragma once

#include <QString>
#include <QStringList>

#include <span>

namespace navrel {

/// What a command's argument names, for completion.
enum class ArgumentKind { none, file, place, group, type, extension, command, text };

enum class CommandID {
    overview,
    tree,
    list,
    outline,
    find,
    classes,
    filter,
    hide,
    show,
    shortcuts,
    notes,
    changes,
    open,
    back,
    follow,
    state,
    doctor,
    pair,
    devices,
    forget,
    project,
    version,
    help,
    quit,
};

/// A command as users see it.
struct CommandInfo {
    CommandID id;
    QString name;
    QStringList otherNames;
    QString parameters; ///< in brackets where they may be left out
    QString summary;
    QString details; ///< a few sentences for `help COMMAND`
    ArgumentKind argument = ArgumentKind::none;
    bool needsCodeMap = false; ///< a device is not served it
    bool isNeeded() const { return !parameters.isEmpty() && !parameters.startsWith(u'['); }
};

/// All commands, in the order of `help`.
std::span<const CommandInfo> commandTable();

/// By its name or another of its names, in whatever letter case; null for none.
const CommandInfo* commandNamed(const QString& name);

/// Names that a mistyped one may have meant, the likeliest first.
QStringList similarCommands(const QString& name);

} // namespace navrel
