#pragma once

#include "companion/terminal/CodeSource.h"
#include "companion/terminal/CommandTable.h"
#include "companion/terminal/MapText.h"
#include "companion/terminal/Names.h"
#include "companion/terminal/TerminalText.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace navrel {

/// Runs the commands that users type: each asks the source, which may block, and prints the answer.
/// One thread.
class Commands {
public:
    struct World {
        CodeSource& source; ///< must outlive the commands
        /// Takes the output of one command: whole lines, each with its line feed.
        std::function<void(const QString& text)> show;
        /// Takes a problem and, on a second line, what the user can do about it; no line feed at
        /// the end.
        std::function<void(const QString& text)> complain;
        TerminalText text;
        bool isJSON = false; ///< views and failures are printed as JSON
        /// Shows the outline of the editor's file until the user ends it. With null, `follow`
        /// prints its usage.
        std::function<CommandResult()> follow = nullptr;
        /// Returns the output of `doctor`. With null, that command prints nothing.
        std::function<QString()> doctor = nullptr;
    };

    explicit Commands(World world) : world_(std::move(world)), mapText_(world_.text) {}

    /// Runs one line as typed. An empty line does nothing, successfully.
    CommandResult run(const QString& line);
    /// Whether a line asks to quit.
    static bool isQuit(const QString& line);

private:
    using View = boost::json::object;

    CommandResult runCommand(const CommandInfo& command, const QString& argument);
    CommandResult answerHelp(const QString& argument);
    CommandResult refuseUnknown(const QString& name);
    CommandResult misuse(const CommandInfo& command);

    CommandResult showOverview();
    CommandResult showTree(const QString& group);
    CommandResult showGroup(const QString& group);
    CommandResult showOutline(const QString& file);
    CommandResult showSearch(const QString& text);
    QString hintForSearch(const QString& text);
    CommandResult showClasses(const QString& name);
    CommandResult runFilter(const QString& argument);
    CommandResult switchType(const QString& extension, bool allowed);
    CommandResult showNotes(const CodeAnswer& notes);
    CommandResult openPlace(const QString& text);
    CommandResult openSymbolInOneOf(const std::vector<NodeName>& files, const PlaceText& place);
    CommandResult openPath(const NodeName& file, std::uint32_t line, std::uint32_t column = 0);
    CommandResult showOutcome(const CodeAnswer& outcome, const QString& place);
    CommandResult showState(const QString& part);
    CommandResult showPairing();
    CommandResult showDevices();
    CommandResult showProject();
    CommandResult showVersion();

    /// Prints a view, as JSON or as the text that `render` makes of it; or its failure.
    template <typename Render>
    CommandResult showView(const CodeAnswer& answer, const Render& render);
    CommandResult fail(const CodeAnswer& answer);
    CommandResult fail(CommandResult result, const QString& problem, const QString& hint);
    void print(const QString& text) { printed_ += text; }
    void printLine(const QString& text) { printed_ += text + u'\n'; }
    void printHeading(const QString& title);

    /// The tree of the project; a failure if none is loaded.
    CodeAnswer wholeTree();
    /// As `wholeTree`, without the files whose types are hidden.
    CodeAnswer shownTree();
    /// The one node that `text` means. Nil if it means none or several, which has been printed;
    /// `what` is the word for such nodes in the message: "file" or "group".
    std::optional<NodeName> nodeNamed(const std::vector<NodeName>& nodes, const QString& text,
                                      const QString& what);
    CommandResult refuseMany(const QString& text, const QString& what, const QStringList& names);
    std::optional<std::uint32_t> lineOfSymbol(const NodeName& file, const std::string& symbol);
    std::string someSource(const View& tree);
    QString outlineText(const View& view) const;
    QString fileTypesText(const View& view) const;

    World world_;
    MapText mapText_;
    QString printed_;
    CommandResult lastFailure_ = CommandResult::done;
};

} // namespace navrel
