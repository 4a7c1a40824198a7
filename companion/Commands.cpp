#include "companion/Commands.h"

#include "companion/ProjectTree.h"
#include "protocol/CompanionProtocol.h"

#include <QVariantList>

#include <utility>
#include <vector>

namespace navrel {

namespace {

const QString kItems = QStringLiteral("items");
const QString kIdentifier = QStringLiteral("identifier");

QVariantList itemsOf(const std::optional<QVariantMap>& reply) {
    return reply ? reply->value(kItems).toList() : QVariantList();
}

QString textOf(const QVariantMap& map, const QString& key) {
    return TerminalText::harmless(map.value(key).toString());
}

} // namespace

struct Commands::Command {
    QString name;
    QString parameters;
    QString help;
    void (Commands::*run)(const QString& argument); // null for the one that quits
};

const std::vector<Commands::Command>& Commands::commands() {
    static const std::vector<Command> kCommands = {
        {QStringLiteral("tree"), {}, QStringLiteral("the whole project"), &Commands::showTree},
        {QStringLiteral("ls"), QStringLiteral("[ID]"),
         QStringLiteral("one group, with identifiers; the main group without ID"),
         &Commands::showGroup},
        {QStringLiteral("elements"), QStringLiteral("ID"), QStringLiteral("the outline of a file"),
         &Commands::showElements},
        {QStringLiteral("classes"),
         {},
         QStringLiteral("the superclasses of the project"),
         &Commands::showSuperclasses},
        {QStringLiteral("class"), QStringLiteral("NAME"),
         QStringLiteral("the files of the classes derived from NAME"), &Commands::showSubclasses},
        {QStringLiteral("types"),
         {},
         QStringLiteral("the file types and their switches"),
         &Commands::showFileTypes},
        {QStringLiteral("type"), QStringLiteral("EXT on|off"),
         QStringLiteral("show or hide files of a type"), &Commands::switchFileType},
        {QStringLiteral("shortcuts"),
         {},
         QStringLiteral("the shortcut comments of the project"),
         &Commands::showShortcuts},
        {QStringLiteral("open"), QStringLiteral("PATH[:LINE]"),
         QStringLiteral("open a file in the editor, at the line"), &Commands::openFile},
        {QStringLiteral("project"),
         {},
         QStringLiteral("the project's folder"),
         &Commands::showProject},
        {QStringLiteral("version"),
         {},
         QStringLiteral("the version of Navrel"),
         &Commands::showVersion},
        {QStringLiteral("help"), {}, QStringLiteral("this list"), &Commands::showHelp},
        {QStringLiteral("quit"), {}, QStringLiteral("end the companion"), nullptr},
    };
    return kCommands;
}

bool Commands::run(const QString& line) {
    const QString trimmed = line.trimmed();
    if (trimmed.isEmpty()) {
        return true;
    }
    const QString name = trimmed.section(QLatin1Char(' '), 0, 0);
    const QString argument = trimmed.mid(name.size()).trimmed();
    for (const Command& command : commands()) {
        if (command.name != name) {
            continue;
        }
        if (command.run == nullptr) {
            return false;
        }
        (this->*command.run)(argument);
        return true;
    }
    print_(QStringLiteral("There is no command \"%1\"; \"help\" lists what there is.")
               .arg(TerminalText::harmless(name)));
    return true;
}

void Commands::showOverview() {
    const std::pair<QString, void (Commands::*)(const QString&)> sections[] = {
        {QStringLiteral("Project"), &Commands::showProject},
        {QStringLiteral("Navigator"), &Commands::showTree},
        {QStringLiteral("Superclasses"), &Commands::showSuperclasses},
        {QStringLiteral("File types"), &Commands::showFileTypes},
        {QStringLiteral("Shortcuts"), &Commands::showShortcuts},
    };
    for (const auto& [title, show] : sections) {
        print_(text_.heading(title));
        (this->*show)({});
        print_({});
    }
    showSomeOutline();
}

std::optional<QVariantMap> Commands::navigator(const QString& identifier) {
    return ask_(kFrameNavigator, {{kIdentifier, identifier}});
}

void Commands::showTree(const QString&) {
    const auto root = ask_(kFrameRootNavigator, {});
    if (!root) {
        print_(QStringLiteral("No project is loaded."));
        return;
    }
    print_(text_.group(textOf(*root, QStringLiteral("label")) + QLatin1Char('/')));
    visitProjectTree(
        *root, [this](const QString& identifier) { return navigator(identifier); },
        [this](const ProjectTreeEntry& entry) {
            const QString name = textOf(entry.item, QStringLiteral("name"));
            const bool isGroup = entry.item.value(QStringLiteral("isGroup")).toBool();
            print_(text_.faint(entry.branches) +
                   (isGroup ? text_.group(name + QLatin1Char('/')) : name));
            return true;
        });
}

void Commands::showGroup(const QString& identifier) {
    const auto reply = identifier.isEmpty() ? ask_(kFrameRootNavigator, {}) : navigator(identifier);
    if (!reply) {
        print_(QStringLiteral("No project is loaded."));
        return;
    }
    if (!identifier.isEmpty() && reply->value(kIdentifier) != identifier) {
        print_(QStringLiteral("Nothing has this identifier; this is the main group."));
    }
    print_(text_.group(textOf(*reply, QStringLiteral("label"))) + QStringLiteral("  ") +
           text_.faint(textOf(*reply, QStringLiteral("path"))));
    for (const QVariant& item : itemsOf(reply)) {
        print_(text_.navigatorLine(item.toMap()));
    }
}

void Commands::showElements(const QString& identifier) {
    const auto reply = ask_(kFrameElements, {{kIdentifier, identifier}});
    if (!reply) {
        print_(QStringLiteral("There is no outline for this identifier."));
        return;
    }
    print_(text_.heading(textOf(*reply, QStringLiteral("title"))) + QStringLiteral("  ") +
           text_.faint(textOf(*reply, QStringLiteral("path"))));
    if (reply->contains(QStringLiteral("counterpart"))) {
        print_(text_.faint(QStringLiteral("counterpart: ") +
                           textOf(*reply, QStringLiteral("counterpart"))));
    }
    print_(itemsOf(reply).isEmpty() ? QStringLiteral("No elements.") : text_.outline(*reply));
}

/// The longest outline among the first files that have one: a glance at what outlines are.
void Commands::showSomeOutline() {
    constexpr int kOutlinesToChooseFrom = 20;
    const auto root = ask_(kFrameRootNavigator, {});
    if (!root) {
        return;
    }
    int outlines = 0;
    qsizetype longest = 0;
    QString identifier;
    visitProjectTree(
        *root, [this](const QString& group) { return navigator(group); },
        [&](const ProjectTreeEntry& entry) {
            const QString file = entry.item.value(kIdentifier).toString();
            const qsizetype length = itemsOf(ask_(kFrameElements, {{kIdentifier, file}})).size();
            if (length > longest) {
                longest = length;
                identifier = file;
            }
            outlines += length > 0 ? 1 : 0;
            return outlines < kOutlinesToChooseFrom;
        });
    print_(text_.heading(QStringLiteral("Elements")));
    if (longest > 0) {
        showElements(identifier);
    } else {
        print_(QStringLiteral("None."));
    }
    print_({});
}

void Commands::showSuperclasses(const QString&) {
    const QVariantList names = itemsOf(ask_(kFrameSuperclasses, {}));
    if (names.isEmpty()) {
        print_(QStringLiteral("None."));
    }
    for (const QVariant& name : names) {
        print_(TerminalText::harmless(name.toString()));
        showSubclasses(name.toString());
    }
}

void Commands::showSubclasses(const QString& superclass) {
    const auto reply = ask_(kFrameNavigator, {{QStringLiteral("superclass"), superclass}});
    for (const QVariant& item : itemsOf(reply)) {
        print_(QStringLiteral("  ") + text_.navigatorLine(item.toMap()));
    }
}

void Commands::showFileTypes(const QString&) {
    printFileTypes(ask_(kFrameFileTypes, {}));
}

void Commands::switchFileType(const QString& argument) {
    const QString setting = argument.section(QLatin1Char(' '), -1);
    const bool isOn = setting == QStringLiteral("on");
    if (!isOn && setting != QStringLiteral("off")) {
        print_(QStringLiteral("type EXT on|off"));
        return;
    }
    const QString extension = argument.chopped(setting.size()).trimmed();
    printFileTypes(ask_(kFrameChangeFileType, {{QStringLiteral("extension"), extension},
                                               {QStringLiteral("allowed"), isOn ? 1 : 0}}));
}

void Commands::printFileTypes(const std::optional<QVariantMap>& reply) {
    for (const QVariant& item : itemsOf(reply)) {
        const QVariantMap type = item.toMap();
        const QString extension = textOf(type, QStringLiteral("extension"));
        const bool isOn = type.value(QStringLiteral("allowed")).toBool();
        print_(QStringLiteral("%1 %2").arg(
            isOn ? QStringLiteral("on ") : text_.faint(QStringLiteral("off")),
            extension.isEmpty() ? text_.faint(QStringLiteral("(no extension)")) : extension));
    }
}

void Commands::showShortcuts(const QString&) {
    const QVariantList shortcuts = itemsOf(ask_(kFrameShortcuts, {}));
    if (shortcuts.isEmpty()) {
        print_(QStringLiteral("None."));
    }
    for (const QVariant& item : shortcuts) {
        const QVariantMap shortcut = item.toMap();
        print_(QStringLiteral("%1  %2").arg(
            text_.accent(textOf(shortcut, QStringLiteral("shortcut"))),
            text_.faint(textOf(shortcut, QStringLiteral("path")) + QLatin1Char(':') +
                        TerminalText::lineNumber(shortcut.value(QStringLiteral("line"))))));
    }
}

void Commands::openFile(const QString& argument) {
    if (argument.isEmpty()) {
        print_(QStringLiteral("open PATH[:LINE]"));
        return;
    }
    QVariantMap request = {{QStringLiteral("path"), argument}};
    bool isNumber = false;
    const QString suffix = argument.section(QLatin1Char(':'), -1);
    const int line = suffix.toInt(&isNumber);
    if (isNumber && suffix.size() < argument.size()) {
        request = {{QStringLiteral("path"), argument.chopped(suffix.size() + 1)},
                   {QStringLiteral("line"), line}};
    }
    ask_(kFrameOpenFile, request);
}

void Commands::showProject(const QString&) {
    const auto reply = ask_(kFrameProject, {});
    print_(reply ? textOf(*reply, QStringLiteral("project")) : QStringLiteral("No project."));
}

void Commands::showVersion(const QString&) {
    const auto reply = ask_(kFrameVersion, {});
    print_(reply ? textOf(*reply, QStringLiteral("version")) : QStringLiteral("No answer."));
}

void Commands::showHelp(const QString&) {
    constexpr int kUsageWidth = 20;
    for (const Command& command : commands()) {
        const QString usage = QStringLiteral("%1 %2").arg(command.name, command.parameters);
        print_(QStringLiteral("%1 %2").arg(usage.leftJustified(kUsageWidth), command.help));
    }
}

} // namespace navrel
