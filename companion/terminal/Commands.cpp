#include "companion/terminal/Commands.h"

#include "companion/terminal/ClassTree.h"
#include "companion/terminal/QRText.h"
#include "companion/terminal/StateText.h"
#include "companion/terminal/ViewAccess.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <boost/json/serialize.hpp>
#include <set>

namespace navrel {

namespace json = boost::json;

namespace {

constexpr int kUsageWidth = 28;
/// More than that are not told apart at a glance.
constexpr qsizetype kMostNamesListed = 20;
/// Enough to find one that is worth a look.
constexpr int kOutlinesToChooseFrom = 20;

QString shown(const std::string& text) {
    return TerminalText::harmless(QString::fromStdString(text));
}

QString commandName(const QString& line) {
    return line.trimmed().section(u' ', 0, 0);
}

/// An argument that was put in quotes, as in a shell, without them.
QString unquoted(const QString& argument) {
    const bool isQuoted = argument.size() > 1 && argument.front() == argument.back() &&
                          (argument.front() == u'"' || argument.front() == u'\'');
    return isQuoted ? argument.sliced(1, argument.size() - 2) : argument;
}

std::string absolutePathOf(const QString& text) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(text)).toStdString();
}

std::string extensionOf(const json::object& file) {
    const std::string extension = bytesAt(file, "extension");
    if (!extension.empty()) {
        return extension;
    }
    const std::string name = bytesAt(file, "name");
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

/// A node without the files below it whose types are hidden.
json::object withoutTypes(const json::object& node, const std::set<std::string>& hidden) {
    json::object kept = node;
    if (!node.contains("children")) {
        return kept;
    }
    json::array children;
    for (const json::value& child : arrayAt(node, "children")) {
        const json::object& object = objectOf(child);
        if (bytesAt(object, "kind") != "file") {
            children.push_back(withoutTypes(object, hidden));
        } else if (!hidden.contains(extensionOf(object))) {
            children.push_back(child);
        }
    }
    kept["children"] = std::move(children);
    return kept;
}

const json::object* nodeWithID(const json::object& node, const std::string& id) {
    if (bytesAt(node, "id") == id) {
        return &node;
    }
    for (const json::value& child : arrayAt(node, "children")) {
        if (const json::object* const found = nodeWithID(objectOf(child), id)) {
            return found;
        }
    }
    return nullptr;
}

std::vector<NodeName> thoseOfKind(const std::vector<NodeName>& nodes, bool isGroup) {
    std::vector<NodeName> result;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(result),
                 [isGroup](const NodeName& node) { return node.isGroup == isGroup; });
    return result;
}

QString placeOf(const NodeName& node) {
    return shown(node.path.empty() ? node.name : node.path);
}

} // namespace

bool Commands::isQuit(const QString& line) {
    const CommandInfo* const command = commandNamed(commandName(line));
    return command != nullptr && command->id == CommandID::quit;
}

CommandResult Commands::run(const QString& line) {
    const QString name = commandName(line);
    if (name.isEmpty()) {
        return CommandResult::done;
    }
    const CommandInfo* const command = commandNamed(name);
    if (command == nullptr) {
        return refuseUnknown(name);
    }
    const QString argument = unquoted(line.trimmed().mid(name.size()).trimmed());
    if (argument.isEmpty() ? command->isNeeded() : command->parameters.isEmpty()) {
        return misuse(*command);
    }
    if (command->needsCodeMap && !world_.source.hasCodeMap()) {
        return fail(CommandResult::notFound,
                    QStringLiteral("\"%1\" is not served to a device.").arg(command->name),
                    QStringLiteral("Run navrel-companion without --device, as the user who runs "
                                   "Navrel."));
    }
    const CommandResult result = runCommand(*command, argument);
    if (!printed_.isEmpty()) {
        world_.show(std::exchange(printed_, {}));
    }
    return result;
}

CommandResult Commands::runCommand(const CommandInfo& command, const QString& argument) {
    CodeSource& source = world_.source;
    switch (command.id) {
    case CommandID::overview:
        return showOverview();
    case CommandID::tree:
        return showTree(argument);
    case CommandID::list:
        return showGroup(argument);
    case CommandID::outline:
        return showOutline(argument);
    case CommandID::find:
        return showSearch(argument);
    case CommandID::classes:
        return showClasses(argument);
    case CommandID::filter:
        return runFilter(argument);
    case CommandID::hide:
        return switchType(argument, false);
    case CommandID::show:
        return switchType(argument, true);
    case CommandID::shortcuts:
        return showNotes(source.shortcuts());
    case CommandID::notes:
        return showNotes(source.notes());
    case CommandID::changes:
        return showView(source.changes(),
                        [this](const View& view) { return mapText_.changes(view); });
    case CommandID::open:
        return openPlace(argument);
    case CommandID::back:
        return showOutcome(source.back());
    case CommandID::follow:
        return world_.follow ? world_.follow() : misuse(command);
    case CommandID::state:
        return showState();
    case CommandID::doctor:
        print(world_.doctor ? world_.doctor() : QString());
        return CommandResult::done;
    case CommandID::pair:
        return showPairing();
    case CommandID::devices:
        return showDevices();
    case CommandID::forget:
        return showView(source.forget(argument.toStdString()),
                        [](const View&) { return QStringLiteral("Forgotten.\n"); });
    case CommandID::project:
        return showProject();
    case CommandID::version:
        return showVersion();
    case CommandID::help:
        return answerHelp(argument);
    case CommandID::quit:
        break;
    }
    return CommandResult::done;
}

// What is amiss.

CommandResult Commands::fail(const CodeAnswer& answer) {
    return fail(answer.result, answer.problem, answer.hint);
}

CommandResult Commands::fail(CommandResult result, const QString& problem, const QString& hint) {
    if (world_.isJSON) {
        json::object error = {{"error", problem.toStdString()}};
        if (!hint.isEmpty()) {
            error["hint"] = hint.toStdString();
        }
        printLine(QString::fromStdString(json::serialize(error)));
    } else {
        world_.complain(hint.isEmpty() ? problem : problem + u'\n' + hint);
    }
    lastFailure_ = result;
    return result;
}

CommandResult Commands::refuseUnknown(const QString& name) {
    const QStringList similar = similarCommands(name);
    return fail(CommandResult::usage,
                QStringLiteral("There is no command \"%1\".").arg(TerminalText::harmless(name)),
                similar.isEmpty() ? QStringLiteral("\"help\" lists all commands.")
                                  : QStringLiteral("Did you mean %1? \"help\" lists all commands.")
                                        .arg(similar.join(QStringLiteral(" or "))));
}

CommandResult Commands::misuse(const CommandInfo& command) {
    return fail(CommandResult::usage,
                QStringLiteral("Usage: %1 %2").arg(command.name, command.parameters).trimmed(),
                command.details);
}

CommandResult Commands::answerHelp(const QString& argument) {
    if (argument.isEmpty()) {
        for (const CommandInfo& command : commandTable()) {
            if (command.needsCodeMap && !world_.source.hasCodeMap()) {
                continue;
            }
            const QString usage = (command.name + u' ' + command.parameters).trimmed();
            printLine(
                QStringLiteral("%1  %2").arg(usage.leftJustified(kUsageWidth), command.summary));
        }
        printLine({});
        printLine(QStringLiteral("Tab completes commands, files, symbols and types. \"help "
                                 "COMMAND\" says more about one."));
        return CommandResult::done;
    }
    const CommandInfo* const command = commandNamed(argument);
    if (command == nullptr) {
        return refuseUnknown(argument);
    }
    const QString usage = (command->name + u' ' + command->parameters).trimmed();
    printLine(world_.text.heading(usage) + QStringLiteral("  ") + command->summary);
    if (!command->details.isEmpty()) {
        printLine(command->details);
    }
    if (!command->otherNames.isEmpty()) {
        printLine(QStringLiteral("Also: %1").arg(command->otherNames.join(QStringLiteral(", "))));
    }
    return CommandResult::done;
}

// Views.

template <typename Render>
CommandResult Commands::showView(const CodeAnswer& answer, const Render& render) {
    if (!answer.isView()) {
        return fail(answer);
    }
    print(world_.isJSON ? QString::fromStdString(json::serialize(answer.view)) + u'\n'
                        : render(answer.view));
    return CommandResult::done;
}

void Commands::printHeading(const QString& title) {
    printLine(world_.text.heading(title));
}

CodeAnswer Commands::wholeTree() {
    CodeAnswer tree = world_.source.tree();
    return tree.isView() && !tree.view.contains("root")
               ? CodeAnswer::failure(CommandResult::notFound,
                                     QStringLiteral("No project is loaded."),
                                     QStringLiteral("\"state\" says why, and what to do."))
               : tree;
}

CodeAnswer Commands::shownTree() {
    CodeAnswer tree = wholeTree();
    if (!tree.isView() || !tree.view.contains("root")) {
        return tree.isView()
                   ? CodeAnswer::failure(CommandResult::notFound,
                                         QStringLiteral("No project is loaded."),
                                         QStringLiteral("\"state\" says why, and what to do."))
                   : tree;
    }
    std::set<std::string> hidden;
    const CodeAnswer types = world_.source.fileTypes();
    for (const json::value& item : arrayAt(types.view, "items")) {
        if (!flagAt(objectOf(item), "allowed")) {
            hidden.insert(bytesAt(objectOf(item), "extension"));
        }
    }
    if (!hidden.empty()) {
        tree.view["root"] = withoutTypes(objectAt(tree.view, "root"), hidden);
    }
    return tree;
}

CommandResult Commands::showOverview() {
    const CodeAnswer tree = shownTree();
    if (!tree.isView()) {
        return fail(tree);
    }
    const std::pair<QString, std::function<void()>> sections[] = {
        {QStringLiteral("Project"), [&] { showProject(); }},
        {QStringLiteral("Navigator"), [&] { print(mapText_.tree(tree.view)); }},
        {QStringLiteral("Superclasses"), [&] { showClasses({}); }},
        {QStringLiteral("File types"), [&] { runFilter({}); }},
        {QStringLiteral("Shortcuts"), [&] { showNotes(world_.source.shortcuts()); }},
    };
    for (const auto& [title, showSection] : sections) {
        printHeading(title);
        showSection();
        printLine({});
    }
    printHeading(QStringLiteral("Elements"));
    const CodeAnswer outline = world_.source.outline(someSource(tree.view));
    print(outline.isView() ? outlineText(outline.view) : QStringLiteral("None.\n"));
    return CommandResult::done;
}

/// A file with much to show: a glance at what outlines are.
std::string Commands::someSource(const View& tree) {
    const std::vector<NodeName> files = thoseOfKind(nodesOf(tree), false);
    const auto most = std::max_element(
        files.begin(), files.end(),
        [](const NodeName& left, const NodeName& right) { return left.symbols < right.symbols; });
    if (most != files.end() && most->symbols > 0) {
        return most->id;
    }
    std::string best;
    std::size_t longest = 0;
    int outlines = 0;
    for (const NodeName& file : files) {
        if (outlines == kOutlinesToChooseFrom) {
            break;
        }
        const std::size_t length = symbolsOf(world_.source.outline(file.id).view).size();
        outlines += length > 0 ? 1 : 0;
        if (length > longest) {
            longest = length;
            best = file.id;
        }
    }
    return best;
}

CommandResult Commands::showTree(const QString& group) {
    CodeAnswer tree = shownTree();
    if (tree.isView() && !group.isEmpty()) {
        const auto node =
            nodeNamed(thoseOfKind(nodesOf(tree.view), true), group, QStringLiteral("group"));
        if (!node) {
            return lastFailure_;
        }
        const json::object root = *nodeWithID(objectAt(tree.view, "root"), node->id);
        tree.view["root"] = root;
    }
    return showView(tree, [this](const View& view) { return mapText_.tree(view); });
}

CommandResult Commands::showGroup(const QString& group) {
    const CodeAnswer tree = shownTree();
    if (!tree.isView()) {
        return fail(tree);
    }
    const json::object& root = objectAt(tree.view, "root");
    std::string id = bytesAt(root, "id");
    if (!group.isEmpty()) {
        const auto node =
            nodeNamed(thoseOfKind(nodesOf(tree.view), true), group, QStringLiteral("group"));
        if (!node) {
            return lastFailure_;
        }
        id = node->id;
    }
    const json::object& node = *nodeWithID(root, id);
    if (world_.isJSON) {
        return showView({CommandResult::done, node, {}, {}}, [](const View&) { return QString(); });
    }
    printLine(world_.text.group(textAt(node, "name")) + QStringLiteral("  ") +
              world_.text.faint(textAt(node, "path")));
    print(mapText_.group(node));
    return CommandResult::done;
}

QString Commands::outlineText(const View& view) const {
    QString text = world_.text.heading(textAt(view, "name")) + QStringLiteral("  ") +
                   world_.text.faint(textAt(view, "path")) + u'\n';
    for (const json::value& file : arrayAt(view, "counterparts")) {
        text +=
            world_.text.faint(QStringLiteral("counterpart: ") + textAt(objectOf(file), "path")) +
            u'\n';
    }
    const QString lines = mapText_.outline(view);
    return text + (lines.isEmpty() ? QStringLiteral("It declares nothing.\n") : lines);
}

CommandResult Commands::showOutline(const QString& file) {
    const CodeAnswer tree = wholeTree();
    if (!tree.isView()) {
        return fail(tree);
    }
    const auto node =
        nodeNamed(thoseOfKind(nodesOf(tree.view), false), file, QStringLiteral("file"));
    return node ? showView(world_.source.outline(node->id),
                           [this](const View& view) { return outlineText(view); })
                : lastFailure_;
}

CommandResult Commands::showSearch(const QString& text) {
    const CodeAnswer found = world_.source.search(text.toStdString());
    if (found.isView() && arrayAt(found.view, "items").empty()) {
        return fail(CommandResult::notFound,
                    QStringLiteral("Nothing is called \"%1\".").arg(TerminalText::harmless(text)),
                    QStringLiteral("Try fewer letters: they need not be next to each other."));
    }
    return showView(found, [this](const View& view) { return mapText_.search(view); });
}

CommandResult Commands::showClasses(const QString& name) {
    const CodeAnswer types = world_.source.types();
    if (!types.isView() || world_.isJSON) {
        return showView(types, [](const View&) { return QString(); });
    }
    const ClassTree tree(types.view, world_.text);
    if (name.isEmpty()) {
        const QString text = tree.all();
        print(text.isEmpty() ? QStringLiteral("None.\n") : text);
        return CommandResult::done;
    }
    const auto below = tree.below(name.toStdString());
    if (!below) {
        return fail(CommandResult::notFound,
                    QStringLiteral("No type is called \"%1\".").arg(TerminalText::harmless(name)),
                    QStringLiteral("\"classes\" lists all that others derive from."));
    }
    if (below->isEmpty()) {
        return fail(CommandResult::notFound,
                    QStringLiteral("Nothing in the project derives from %1.")
                        .arg(TerminalText::harmless(name)),
                    {});
    }
    print(*below);
    return CommandResult::done;
}

CommandResult Commands::showNotes(const CodeAnswer& notes) {
    return showView(notes, [this](const View& view) {
        const QString text = mapText_.notes(view);
        return text.isEmpty() ? QStringLiteral("None.\n") : text;
    });
}

// File types.

QString Commands::fileTypesText(const View& view) const {
    QString text;
    for (const json::value& item : arrayAt(view, "items")) {
        const json::object& type = objectOf(item);
        const QString extension = textAt(type, "extension");
        text += (flagAt(type, "allowed") ? QStringLiteral("on ")
                                         : world_.text.faint(QStringLiteral("off"))) +
                u' ' +
                (extension.isEmpty() ? world_.text.faint(QStringLiteral("(no extension)"))
                                     : extension) +
                u'\n';
    }
    return text.isEmpty() ? QStringLiteral("None.\n") : text;
}

CommandResult Commands::runFilter(const QString& argument) {
    if (argument.isEmpty()) {
        return showView(world_.source.fileTypes(),
                        [this](const View& view) { return fileTypesText(view); });
    }
    const QString setting = argument.section(u' ', -1).toLower();
    if (setting != QStringLiteral("on") && setting != QStringLiteral("off")) {
        return misuse(*commandNamed(QStringLiteral("filter")));
    }
    return switchType(argument.chopped(setting.size()).trimmed(), setting == QStringLiteral("on"));
}

CommandResult Commands::switchType(const QString& extension, bool allowed) {
    const QString name = extension.startsWith(u'.') || extension.startsWith(u'*')
                             ? extension.section(u'.', -1)
                             : extension;
    const CodeAnswer before = world_.source.fileTypes();
    const json::array& types = arrayAt(before.view, "items");
    const bool isThere = std::any_of(types.begin(), types.end(), [&](const json::value& type) {
        return bytesAt(objectOf(type), "extension") == name.toStdString();
    });
    if (before.isView() && !isThere) {
        return fail(CommandResult::notFound,
                    QStringLiteral("The project has no files of type \"%1\".")
                        .arg(TerminalText::harmless(name)),
                    QStringLiteral("\"filter\" lists the types that it has."));
    }
    return showView(before.isView() ? world_.source.switchFileType(name.toStdString(), allowed)
                                    : before,
                    [this](const View& view) { return fileTypesText(view); });
}

// Names.

CommandResult Commands::refuseMany(const QString& text, const QString& what,
                                   const QStringList& names) {
    QStringList listed = names.first(std::min(names.size(), kMostNamesListed));
    if (names.size() > listed.size()) {
        listed.append(QStringLiteral("… and %1 more").arg(names.size() - listed.size()));
    }
    return fail(CommandResult::notFound,
                QStringLiteral("%1 %2s fit \"%3\":\n  %4")
                    .arg(names.size())
                    .arg(what, TerminalText::harmless(text), listed.join(QStringLiteral("\n  "))),
                QStringLiteral("Type more of the one that you mean."));
}

std::optional<NodeName> Commands::nodeNamed(const std::vector<NodeName>& nodes, const QString& text,
                                            const QString& what) {
    const auto found = nodesNamed(nodes, text.toStdString(), absolutePathOf(text));
    if (found.size() == 1) {
        return found.front();
    }
    if (found.empty()) {
        fail(
            CommandResult::notFound,
            QStringLiteral("The project has no %1 \"%2\".").arg(what, TerminalText::harmless(text)),
            world_.source.hasCodeMap()
                ? QStringLiteral("\"find %1\" searches symbols, too; \"tree\" shows all files.")
                      .arg(TerminalText::harmless(text))
                : QStringLiteral("\"tree\" shows all files."));
        return std::nullopt;
    }
    QStringList names;
    for (const NodeName& node : found) {
        names.append(placeOf(node));
    }
    refuseMany(text, what, names);
    return std::nullopt;
}

std::optional<std::uint32_t> Commands::lineOfSymbol(const NodeName& file,
                                                    const std::string& symbol) {
    const CodeAnswer outline = world_.source.outline(file.id);
    if (!outline.isView()) {
        fail(outline);
        return std::nullopt;
    }
    const auto found = symbolsNamed(symbolsOf(outline.view), symbol);
    if (found.size() == 1) {
        return found.front().line;
    }
    if (found.empty()) {
        fail(CommandResult::notFound,
             QStringLiteral("%1 declares no \"%2\".").arg(shown(file.name), shown(symbol)),
             QStringLiteral("\"outline %1\" shows what it declares.").arg(shown(file.name)));
        return std::nullopt;
    }
    QStringList names;
    for (const SymbolName& each : found) {
        names.append(
            QStringLiteral("%1:%2  %3").arg(shown(file.name)).arg(each.line).arg(shown(each.name)));
    }
    refuseMany(shown(symbol), QStringLiteral("symbol"), names);
    return std::nullopt;
}

// Opening.

CommandResult Commands::openPlace(const QString& text) {
    const CodeAnswer tree = wholeTree();
    if (!tree.isView()) {
        return fail(tree);
    }
    const std::vector<NodeName> files = thoseOfKind(nodesOf(tree.view), false);
    const std::vector<PlaceText> places = placesIn(text.toStdString());
    for (const PlaceText& place : places) {
        const QString file = QString::fromStdString(place.file);
        const auto found = nodesNamed(files, place.file, absolutePathOf(file));
        if (found.empty()) {
            continue;
        }
        if (found.size() > 1) {
            return nodeNamed(files, file, QStringLiteral("file")) ? CommandResult::done
                                                                  : lastFailure_;
        }
        if (place.symbol.empty()) {
            return openPath(found.front(), place.line);
        }
        const auto line = lineOfSymbol(found.front(), place.symbol);
        return line ? openPath(found.front(), *line) : lastFailure_;
    }
    // A device may have any file opened, also one that the project does not have.
    const QString first = QString::fromStdString(places.front().file);
    if (!world_.source.hasCodeMap() && QFileInfo(first).isAbsolute() && QFileInfo::exists(first)) {
        return openPath({{}, {}, first.toStdString(), false, 0}, places.front().line);
    }
    nodeNamed({}, first, QStringLiteral("file"));
    return lastFailure_;
}

CommandResult Commands::openPath(const NodeName& file, std::uint32_t line) {
    return showOutcome(world_.source.open(file.id, file.path, line));
}

CommandResult Commands::showOutcome(const CodeAnswer& outcome) {
    return showView(outcome, [](const View& view) {
        const QString editor = textAt(view, "editor");
        if (bytesAt(view, "outcome") != "opened") {
            return QStringLiteral("Navrel was asked to open it.\n");
        }
        return editor.isEmpty() ? QStringLiteral("Opened.\n")
                                : QStringLiteral("Opened in %1.\n").arg(editor);
    });
}

// The program.

CommandResult Commands::showState() {
    return showView(world_.source.state(),
                    [this](const View& view) { return stateText(view, world_.text); });
}

CommandResult Commands::showPairing() {
    return showView(world_.source.pairing(), [this](const View& offer) {
        const QString url = textAt(offer, "url");
        const QString fingerprint = textAt(offer, "fingerprint");
        return qrText(url.toStdString(), world_.text.style()) +
               QStringLiteral("\nScan this, or open  %1\nThe code to type: %2\n")
                   .arg(url, textAt(offer, "code")) +
               (fingerprint.isEmpty()
                    ? QString()
                    : QStringLiteral("The certificate's SHA-256: %1\n").arg(fingerprint));
    });
}

CommandResult Commands::showDevices() {
    return showView(world_.source.devices(), [](const View& view) {
        const QString text = devicesText(view);
        return text.isEmpty()
                   ? QStringLiteral("No device is paired. \"pair\" shows a code for one.\n")
                   : text;
    });
}

CommandResult Commands::showProject() {
    return showView(world_.source.project(), [](const View& view) {
        const QString folder = textAt(view, "folder");
        const QString name = textAt(view, "name");
        return (!folder.isEmpty() ? folder
                : name.isEmpty()  ? QStringLiteral("No project.")
                                  : name) +
               u'\n';
    });
}

CommandResult Commands::showVersion() {
    return showView(world_.source.version(), [](const View& view) {
        return QStringLiteral("%1 %2\n").arg(textAt(view, "program"), textAt(view, "version"));
    });
}

} // namespace navrel
