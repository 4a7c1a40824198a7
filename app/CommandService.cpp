#include "app/CommandService.h"

#include "app/Desktop.h"
#include "app/ProgramVersion.h"
#include "project/KZDataManager.h"
#include "protocol/CompanionKeys.h"
#include "protocol/CompanionProtocol.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/propertylist/PropertyList.h"
#include "support/text/FilePath.h"
#include "transport/frames/PTFrame.h"
#include "transport/frames/PTPayload.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <utility>

namespace navrel {

namespace {

using World = CommandService::World;
using Request = std::optional<QVariantMap>; ///< nothing for a payload that is no dictionary
using Reply = std::optional<QVariantMap>;

/// Types that the filter lets through although nothing answers them.
constexpr quint32 kFirstIgnoredType = 100;
constexpr quint32 kLastIgnoredType = 103;

/// What the outline of the active file is offered for: exactly these, in this spelling.
constexpr std::array<QByteArrayView, 6> kSourceExtensions = {"h", "m", "c", "cpp", "mm", "swift"};

/// A payload as a dictionary; nothing when there is none, or it holds something else.
Request dictionaryFromPayload(const std::optional<DispatchData>& payload) {
    const auto value = dictionaryWithContentsOfDispatchData(payload);
    if (!value || value->typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    return value->toMap();
}

/// A key's text; a value of another type counts as absent.
std::optional<QString> textForKey(const Request& request, const QString& key) {
    if (!request) {
        return std::nullopt;
    }
    const QVariant value = request->value(key);
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

/// A key's boolean, sent as such or as an integer; anything else counts as NO.
bool flagForKey(const Request& request, const QString& key) {
    return request && booleanOf(request->value(key)).value_or(false);
}

bool isSourceFile(const QString& path) {
    const QByteArray extension = pathExtension(path.toUtf8());
    return std::find(kSourceExtensions.begin(), kSourceExtensions.end(),
                     QByteArrayView(extension)) != kSourceExtensions.end();
}

Reply rootNavigator(const World& world, const Request&) {
    return world.dataManager.navigatorDictionaryForID(std::nullopt);
}

Reply navigator(const World& world, const Request& request) {
    KZDataManager& manager = world.dataManager;
    if (request && request->contains(key::identifier)) {
        const auto identifier = textForKey(request, key::identifier);
        const Reply reply = identifier ? manager.navigatorDictionaryForID(identifier) : Reply();
        // Deliberate: a stale identifier is answered with the whole tree, not with silence; and so
        // is one that is no text, as nothing has it.
        return reply ? reply : rootNavigator(world, std::nullopt);
    }
    if (const auto superclass = textForKey(request, key::superclass)) {
        return manager.navigatorDictionaryForSuperclass(*superclass);
    }
    return std::nullopt;
}

Reply openFileAtLine(const World& world, const Request& request) {
    const auto path = textForKey(request, key::path);
    const QVariant line = request ? request->value(key::line) : QVariant();
    world.dataManager.openFile(path, line);
    return std::nullopt;
}

Reply shortcuts(const World& world, const Request&) {
    return world.dataManager.shortcutsDictionary();
}

Reply elementsOfActiveFile(const World& world) {
    const auto identifier = world.dataManager.objectIDForActiveFile();
    if (!identifier) {
        log(QStringLiteral("ERROR: No active ID"));
        return std::nullopt;
    }
    const Reply reply = world.dataManager.elementsDictionaryForObjectID(*identifier);
    if (!reply || !isSourceFile(reply->value(key::path).toString())) {
        return std::nullopt;
    }
    return reply;
}

Reply elements(const World& world, const Request& request) {
    if (flagForKey(request, key::autoUpdate)) {
        return elementsOfActiveFile(world);
    }
    const auto identifier = textForKey(request, key::identifier);
    if (!identifier || identifier->isEmpty()) {
        return std::nullopt;
    }
    return world.dataManager.elementsDictionaryForObjectID(*identifier);
}

Reply allowedFileTypes(const World& world, const Request&) {
    return world.dataManager.allowedFileTypesDictionary();
}

Reply changeFileType(const World& world, const Request& request) {
    if (!request) {
        return std::nullopt;
    }
    return world.dataManager.changeFiletypeAllowanceWithDictionary(*request);
}

Reply superclasses(const World& world, const Request&) {
    return world.dataManager.superclassDictionary();
}

Reply openWithDesktop(const World& world, const Request& request) {
    if (const auto path = textForKey(request, key::path)) {
        world.desktop.openFile(*path);
    }
    return std::nullopt;
}

Reply projectFolder(const World& world, const Request&) {
    const auto& path = world.dataManager.projectPath();
    if (!path) {
        return std::nullopt;
    }
    return QVariantMap{{key::project, *path}};
}

Reply pickProject(const World& world, const Request& request) {
    if (request) {
        world.dataManager.open();
    }
    return std::nullopt;
}

Reply versionHandshake(const World& world, const Request&) {
    return QVariantMap{{key::version, majorMinorVersion(world.version)}};
}

/// What a frame type asks for.
struct Command {
    quint32 type;
    bool readsPayload;
    Reply (*answer)(const World& world, const Request& request);
};

constexpr std::array<Command, 12> kCommands = {{
    {kFrameNavigator, true, &navigator},
    {kFrameOpenFile, true, &openFileAtLine},
    {kFrameRootNavigator, false, &rootNavigator},
    {kFrameShortcuts, false, &shortcuts},
    {kFrameElements, true, &elements},
    {kFrameFileTypes, false, &allowedFileTypes},
    {kFrameChangeFileType, true, &changeFileType},
    {kFrameSuperclasses, false, &superclasses},
    {kFrameOpenWithDesktop, true, &openWithDesktop},
    {kFrameProject, false, &projectFolder},
    {kFramePickProject, true, &pickProject},
    {kFrameVersion, false, &versionHandshake},
}};

const Command* commandForType(quint32 type) {
    const auto command =
        std::find_if(kCommands.begin(), kCommands.end(),
                     [type](const Command& candidate) { return candidate.type == type; });
    return command == kCommands.end() ? nullptr : &*command;
}

} // namespace

CommandService::CommandService(World world) : world_(std::move(world)) {}

bool CommandService::accepts(quint32 type) {
    const bool isIgnored = type >= kFirstIgnoredType && type <= kLastIgnoredType;
    return type == kPTFrameTypeEndOfStream || isIgnored || commandForType(type) != nullptr;
}

Reply CommandService::answer(quint32 type, const std::optional<DispatchData>& payload) const {
    NAVREL_ASSERT_MAIN_THREAD();
    const Command* command = commandForType(type);
    if (command == nullptr) {
        return std::nullopt;
    }
    const auto request = command->readsPayload ? dictionaryFromPayload(payload) : std::nullopt;
    return command->answer(world_, request);
}

} // namespace navrel
