#pragma once

#include "companion/TerminalText.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <vector>

namespace navrel {

/// What a person at the terminal can ask for: each command is one or more requests, and prints the
/// answers readably. Main thread.
class Commands {
public:
    /// Sends a request and gives its answer, as CompanionLink::ask does.
    using Ask = std::function<std::optional<QVariantMap>(quint32 type, const QVariantMap& request)>;
    /// Prints one or more lines; the last line break is not part of the text.
    using Print = std::function<void(const QString& text)>;

    Commands(Ask ask, Print print, TerminalText text)
        : ask_(std::move(ask)), print_(std::move(print)), text_(text) {}

    /// Runs one line as typed. False when it asks to quit.
    bool run(const QString& line);

    /// Everything that the device shows of a project, one section after another.
    void showOverview();

private:
    struct Command;
    static const std::vector<Command>& commands();

    void showTree(const QString& argument);
    void showGroup(const QString& identifier);
    void showElements(const QString& identifier);
    void showSuperclasses(const QString& argument);
    void showSubclasses(const QString& superclass);
    void showFileTypes(const QString& argument);
    void switchFileType(const QString& argument);
    void showShortcuts(const QString& argument);
    void openFile(const QString& argument);
    void showProject(const QString& argument);
    void showVersion(const QString& argument);
    void showHelp(const QString& argument);

    void printFileTypes(const std::optional<QVariantMap>& reply);
    void showSomeOutline();
    std::optional<QVariantMap> navigator(const QString& identifier);

    Ask ask_;
    Print print_;
    TerminalText text_;
};

} // namespace navrel
