#include "companion/terminal/CommandTable.h"

#include <algorithm>
#include <vector>

namespace navrel {

namespace {

QString q(const char* text) {
    return QString::fromUtf8(text);
}

using Kind = ArgumentKind;
using ID = CommandID;

const std::vector<CommandInfo>& table() {
    static const std::vector<CommandInfo> kTable = {
        {ID::overview,
         q("overview"),
         {},
         {},
         q("the project at a glance"),
         q("The folder, the tree, classes, file types, shortcuts, and the outline of one file.")},
        {ID::tree,
         q("tree"),
         {},
         q("[GROUP]"),
         q("all groups and files, or those of one group"),
         q("File types that are hidden (see filter) are left out."),
         Kind::group},
        {ID::list,
         q("ls"),
         {},
         q("[GROUP]"),
         q("what is directly in a group"),
         q("Without a group, what is at the top. A group is named by its name or its path."),
         Kind::group},
        {ID::outline,
         q("outline"),
         {q("elements")},
         q("FILE"),
         q("what a file declares"),
         q("FILE is a name, a path, or a part of one that fits no other file: outline Tide.swift"),
         Kind::file},
        {ID::find,
         q("find"),
         {q("search")},
         q("TEXT"),
         q("files, symbols and notes by their name"),
         q("Letters may be left out: find wv finds WaterView. The best match comes first."),
         Kind::text,
         true},
        {ID::classes,
         q("classes"),
         {q("class"), q("subclasses")},
         q("[NAME]"),
         q("what derives from what"),
         q("With a name, what derives from that class or protocol: classes UIView"),
         Kind::type},
        {ID::filter,
         q("filter"),
         {q("types"), q("type")},
         q("[EXT on|off]"),
         q("which file types are shown"),
         q("Without arguments, a list. filter plist off hides property lists, here and on every "
           "device; filter plist on shows them again."),
         Kind::extension},
        {ID::hide,
         q("hide"),
         {},
         q("EXT"),
         q("hide files of a type"),
         q("The same as filter EXT off."),
         Kind::extension},
        {ID::show,
         q("show"),
         {},
         q("EXT"),
         q("show files of a type again"),
         q("The same as filter EXT on."),
         Kind::extension},
        {ID::shortcuts,
         q("shortcuts"),
         {},
         {},
         q("the shortcut comments"),
         q("Comments that the status menu lists, too.")},
        {ID::notes,
         q("notes"),
         {},
         {},
         q("shortcuts, TODO, FIXME and warnings"),
         q("With the place of each; open takes a place as it is shown."),
         Kind::none,
         true},
        {ID::changes,
         q("changes"),
         {},
         {},
         q("what changed on this Git branch"),
         q("Files and declarations that differ from the main branch."),
         Kind::none,
         true},
        {ID::open,
         q("open"),
         {q("edit")},
         q("FILE[:LINE|:SYMBOL]"),
         q("open a file in the editor"),
         q("open Tide.swift, open Tide.swift:12, open Tide.swift:12:5 (with a column) or open "
           "Tide.swift:rise. A path, part of a name or an identifier works, too."),
         Kind::place},
        {ID::back,
         q("back"),
         {},
         {},
         q("where the editor was before the last open"),
         q("Goes back one step at a time, also when the file was closed since."),
         Kind::none,
         true},
        {ID::follow,
         q("follow"),
         {},
         {},
         q("the outline of the file in the editor, as you move"),
         q("The declaration around the cursor is lit. Enter ends it."),
         Kind::none,
         true},
        {ID::state,
         q("state"),
         {q("status"), q("device")},
         q("[PART]"),
         q("what is connected, and what is amiss"),
         q("Project, device, editor, browsers, code map and updates, with what to do; or one of "
           "these: state device"),
         Kind::none,
         true},
        {ID::doctor,
         q("doctor"),
         {},
         {},
         q("all that a report of a problem needs"),
         q("Versions, the terminal, and the state of everything; works without Navrel, too. Your "
           "home folder is shown as ~.")},
        {ID::pair,
         q("pair"),
         {},
         {},
         q("a code that lets a phone or tablet in"),
         q("Scan it with the device's camera, or open the address there and type the digits."),
         Kind::none,
         true},
        {ID::devices,
         q("devices"),
         {},
         {},
         q("the browsers that are paired"),
         q("With the number that forget takes."),
         Kind::none,
         true},
        {ID::forget,
         q("forget"),
         {},
         q("N"),
         q("lock a paired browser out"),
         q("N is its number in the list of devices."),
         Kind::text,
         true},
        {ID::project, q("project"), {}, {}, q("the project's name or folder"), {}},
        {ID::version, q("version"), {}, {}, q("the version of Navrel"), {}},
        {ID::help,
         q("help"),
         {q("?")},
         q("[COMMAND]"),
         q("this list, or more about one command"),
         {},
         Kind::command},
        {ID::quit, q("quit"), {q("exit")}, {}, q("end the companion, as Ctrl-D does"), {}},
    };
    return kTable;
}

/// How many letters two words have to change, miss or have too many.
qsizetype distance(const QString& left, const QString& right) {
    std::vector<qsizetype> row(static_cast<std::size_t>(right.size()) + 1);
    for (std::size_t at = 0; at < row.size(); ++at) {
        row[at] = static_cast<qsizetype>(at);
    }
    for (qsizetype i = 0; i < left.size(); ++i) {
        qsizetype diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool isSame = left.at(i) == right.at(static_cast<qsizetype>(j) - 1);
            const qsizetype cost =
                std::min({row[j] + 1, row[j - 1] + 1, diagonal + (isSame ? 0 : 1)});
            diagonal = std::exchange(row[j], cost);
        }
    }
    return row.back();
}

} // namespace

std::span<const CommandInfo> commandTable() {
    return table();
}

const CommandInfo* commandNamed(const QString& name) {
    const QString low = name.toLower();
    const auto found = std::find_if(table().begin(), table().end(), [&](const CommandInfo& each) {
        return each.name == low || each.otherNames.contains(low);
    });
    return found == table().end() ? nullptr : &*found;
}

QStringList similarCommands(const QString& name) {
    constexpr qsizetype kLongestMistyped = 20;
    constexpr qsizetype kMostMistakes = 2;
    const QString low = name.toLower();
    QStringList result;
    if (low.size() > kLongestMistyped) {
        return result;
    }
    for (const CommandInfo& command : table()) {
        if (command.name.startsWith(low)) {
            result.append(command.name);
        }
    }
    for (const CommandInfo& command : table()) {
        if (!result.contains(command.name) && low.size() > kMostMistakes &&
            distance(low, command.name) <= kMostMistakes) {
            result.append(command.name);
        }
    }
    return result;
}

} // namespace navrel
