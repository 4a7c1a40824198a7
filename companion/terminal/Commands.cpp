#include "companion/terminal/Commands.h"

#include "codemap/Characters.h"
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
/// Words of a question that are searched for one by one; shorter ones find nearly everything.
constexpr qsizetype kMostWordsTried = 3;
constexpr qsizetype kShortestWordTried = 4;
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

/// The extension that a user means: "plist", ".plist", "*.plist", "PLIST" or "plists"; nil where
/// the project has no such files.
std::optional<std::string> typeNamed(const json::object& types, std::string_view text) {
    const auto dot = text.starts_with('.') || text.starts_with('*') ? text.rfind('.') : text.npos;
    const std::string name(dot == text.npos ? text : text.substr(dot + 1));
    const std::string low = lowered(name);
    const std::string singular = low.ends_with('s') ? low.substr(0, low.size() - 1) : low;
    for (const std::string& meant : {name, low, singular}) {
        for (const json::value& type : arrayAt(types, "items")) {
            const std::string extension = bytesAt(objectOf(type), "extension");
            if (extension == meant || (meant == low && lowered(extension) == low)) {
                return extension;
            }
        }
    }
    return std::nullopt;
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

QStringList placesOf(const std::vector<NodeName>& nodes) {
    QStringList places;
    for (const NodeName& node : nodes) {
        places.append(placeOf(node));
    }
    return places;
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
        return showOutcome(source.back(), {});
    case CommandID::follow:
        return world_.follow ? world_.follow() : misuse(command);
    case CommandID::state:
        return showState(argument);
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
                command.parameters.isEmpty() ? QStringLiteral("It takes nothing behind its name.")
                                             : command.details);
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
    if (!tree.isView()) {
        return tree;
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

/// A question in several words finds nothing, where one of them would.
QString Commands::hintForSearch(const QString& text) {
    QStringList words;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        const bool isAsked = word.size() >= kShortestWordTried && words.size() < kMostWordsTried;
        if (isAsked && word != text &&
            !arrayAt(world_.source.search(word.toStdString()).view, "items").empty()) {
            words.append(QStringLiteral("find ") + TerminalText::harmless(word));
        }
    }
    return words.isEmpty()
               ? QStringLiteral("Try fewer letters: they need not be next to each other.")
               : QStringLiteral("One word finds more: %1.").arg(words.join(QStringLiteral(", ")));
}

CommandResult Commands::showSearch(const QString& text) {
    const CodeAnswer found = world_.source.search(text.toStdString());
    if (found.isView() && arrayAt(found.view, "items").empty()) {
        return fail(CommandResult::notFound,
                    QStringLiteral("Nothing is called \"%1\".").arg(TerminalText::harmless(text)),
                    hintForSearch(text));
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
                    QStringLiteral("\"classes\" lists all that others derive from."));
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
        return fail(CommandResult::usage, QStringLiteral("Usage: filter [EXT on|off]"),
                    QStringLiteral("filter plist off hides property lists. For what derives from "
                                   "a class: classes %1")
                        .arg(TerminalText::harmless(argument)));
    }
    return switchType(argument.chopped(setting.size()).trimmed(), setting == QStringLiteral("on"));
}

CommandResult Commands::switchType(const QString& extension, bool allowed) {
    const CodeAnswer before = world_.source.fileTypes();
    if (!before.isView()) {
        return fail(before);
    }
    const auto name = typeNamed(before.view, extension.toStdString());
    if (!name) {
        return fail(CommandResult::notFound,
                    QStringLiteral("The project has no files of type \"%1\".")
                        .arg(TerminalText::harmless(extension)),
                    QStringLiteral("\"filter\" lists the types that it has."));
    }
    return showView(world_.source.switchFileType(*name, allowed),
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
                ? QStringLiteral("\"find %1\" searches symbols, too, and shows places that open "
                                 "takes; \"tree\" shows all files.")
                      .arg(TerminalText::harmless(text))
                : QStringLiteral("\"tree\" shows all files."));
        return std::nullopt;
    }
    refuseMany(text, what, placesOf(found));
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
        if (found.size() > 1 && !place.symbol.empty()) {
            return openSymbolInOneOf(found, place);
        }
        if (found.size() > 1) {
            return nodeNamed(files, file, QStringLiteral("file")) ? CommandResult::done
                                                                  : lastFailure_;
        }
        if (place.symbol.empty()) {
            return openPath(found.front(), place.line, place.column);
        }
        const auto line = lineOfSymbol(found.front(), place.symbol);
        return line ? openPath(found.front(), *line) : lastFailure_;
    }
    // A device may have any file opened, also one that the project does not have.
    const QString first = QString::fromStdString(places.front().file);
    if (!world_.source.hasCodeMap() && QFileInfo(first).isAbsolute() && QFileInfo::exists(first)) {
        return openPath({{}, {}, first.toStdString(), false, 0}, places.front().line,
                        places.front().column);
    }
    nodeNamed({}, first, QStringLiteral("file"));
    return lastFailure_;
}

/// Where several files have the name, the one that declares the symbol is meant.
CommandResult Commands::openSymbolInOneOf(const std::vector<NodeName>& files,
                                          const PlaceText& place) {
    std::vector<std::pair<NodeName, SymbolName>> found;
    QStringList names;
    for (const NodeName& file : files) {
        if (names.size() == kMostNamesListed) {
            break;
        }
        const CodeAnswer outline = world_.source.outline(file.id);
        for (const SymbolName& each : symbolsNamed(symbolsOf(outline.view), place.symbol)) {
            found.emplace_back(file, each);
            names.append(QStringLiteral("%1:%2  %3")
                             .arg(placeOf(file))
                             .arg(each.line)
                             .arg(shown(each.name)));
        }
    }
    if (found.size() == 1) {
        return openPath(found.front().first, found.front().second.line);
    }
    return refuseMany(shown(found.empty() ? place.file : place.symbol),
                      found.empty() ? QStringLiteral("file") : QStringLiteral("symbol"),
                      found.empty() ? placesOf(files) : names);
}

CommandResult Commands::openPath(const NodeName& file, std::uint32_t line, std::uint32_t column) {
    QString place = file.name.empty() ? shown(file.path) : shown(file.name);
    for (const std::uint32_t number : {line, column}) {
        place += number > 0 ? QStringLiteral(":%1").arg(number) : QString();
    }
    return showOutcome(world_.source.open(file.id, file.path, line, column), place);
}

/// `place` is what was to be opened; empty where that is not known.
CommandResult Commands::showOutcome(const CodeAnswer& outcome, const QString& place) {
    return showView(outcome, [&](const View& view) {
        const QString editor = textAt(view, "editor");
        const QString what = place.isEmpty() ? QString() : u' ' + place;
        if (bytesAt(view, "outcome") != "opened") {
            return QStringLiteral("Navrel was asked to open%1.\n")
                .arg(place.isEmpty() ? QStringLiteral(" it") : what);
        }
        return editor.isEmpty() ? QStringLiteral("Opened%1.\n").arg(what)
                                : QStringLiteral("Opened%1 in %2.\n").arg(what, editor);
    });
}

// The program.

CommandResult Commands::showState(const QString& part) {
    CodeAnswer state = world_.source.state();
    if (state.isView() && !part.isEmpty()) {
        json::array kept;
        QStringList parts;
        for (const json::value& sentence : arrayAt(state.view, "sentences")) {
            const QString title = textAt(objectOf(sentence), "part");
            parts.append(title.toLower());
            if (title.startsWith(part, Qt::CaseInsensitive)) {
                kept.push_back(sentence);
            }
        }
        if (kept.empty()) {
            return fail(
                CommandResult::notFound,
                QStringLiteral("The state has no part \"%1\".").arg(TerminalText::harmless(part)),
                QStringLiteral("Its parts: %1.").arg(parts.join(QStringLiteral(", "))));
        }
        state.view = {{"sentences", std::move(kept)}};
    }
    return showView(state, [this](const View& view) { return stateText(view, world_.text); });
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
                   ? QStringLiteral("No browser is paired. \"pair\" shows a code for one; "
                                    "\"state device\" says how a device on the cable stands.\n")
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
