// Answering the companion app: one table of frame types, one small function each. A function gives
// the reply, or nothing where none is due; there are no error replies.

#include "app/AppDelegate.h"
#include "app/Desktop.h"
#include "app/ProgramVersion.h"
#include "project/KZDataManager.h"
#include "support/Log.h"
#include "support/propertylist/PropertyList.h"
#include "support/text/FilePath.h"
#include "transport/CompanionProtocol.h"
#include "transport/PTData.h"
#include "transport/PTFrame.h"
#include "transport/PTPayload.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>

namespace navrel {

namespace {

/// Types that the filter lets through although nothing answers them.
constexpr quint32 kFirstIgnoredType = 100;
constexpr quint32 kLastIgnoredType = 103;

/// What the outline of the active file is offered for: exactly these, in this spelling.
constexpr std::array<QByteArrayView, 6> kSourceExtensions = {"h", "m", "c", "cpp", "mm", "swift"};

/// A payload as a dictionary; nothing when there is none, or it holds something else.
std::optional<QVariantMap> dictionaryFromPayload(const std::shared_ptr<const PTData>& payload) {
    if (payload == nullptr) {
        return std::nullopt;
    }
    const auto value = dictionaryWithContentsOfDispatchData(payload->dispatchData());
    if (!value || value->typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    return value->toMap();
}

/// A key's text; a value of another type counts as absent.
std::optional<QString> textForKey(const std::optional<QVariantMap>& request, const QString& key) {
    if (!request) {
        return std::nullopt;
    }
    const QVariant value = request->value(key);
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

/// A key's boolean, sent as such or as an integer; anything else counts as NO.
bool flagForKey(const std::optional<QVariantMap>& request, const QString& key) {
    return request && booleanOf(request->value(key)).value_or(false);
}

bool isSourceFile(const QString& path) {
    const QByteArray extension = pathExtension(path.toUtf8());
    return std::find(kSourceExtensions.begin(), kSourceExtensions.end(),
                     QByteArrayView(extension)) != kSourceExtensions.end();
}

} // namespace

struct AppDelegate::Command {
    quint32 type;
    bool readsPayload;
    Reply (AppDelegate::*answer)(const std::optional<Request>& request);
};

const AppDelegate::Command* AppDelegate::commandForType(quint32 type) {
    static constexpr std::array<Command, 12> kCommands = {{
        {kFrameNavigator, true, &AppDelegate::navigator},
        {kFrameOpenFile, true, &AppDelegate::openFileAtLine},
        {kFrameRootNavigator, false, &AppDelegate::rootNavigator},
        {kFrameShortcuts, false, &AppDelegate::shortcuts},
        {kFrameElements, true, &AppDelegate::elements},
        {kFrameFileTypes, false, &AppDelegate::allowedFileTypes},
        {kFrameChangeFileType, true, &AppDelegate::changeFileType},
        {kFrameSuperclasses, false, &AppDelegate::superclasses},
        {kFrameOpenWithDesktop, true, &AppDelegate::openWithDesktop},
        {kFrameProject, false, &AppDelegate::projectFolder},
        {kFramePickProject, true, &AppDelegate::pickProject},
        {kFrameVersion, false, &AppDelegate::versionHandshake},
    }};
    const auto command =
        std::find_if(kCommands.begin(), kCommands.end(),
                     [type](const Command& candidate) { return candidate.type == type; });
    return command == kCommands.end() ? nullptr : &*command;
}

quint8 AppDelegate::optionalOperations() const {
    return kShouldAcceptFrame | kDidEnd;
}

bool AppDelegate::ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>& channel,
                                                        quint32 type, quint32, quint32) {
    const bool isIgnored = type >= kFirstIgnoredType && type <= kLastIgnoredType;
    if (type == kPTFrameTypeEndOfStream || isIgnored || commandForType(type) != nullptr) {
        return true;
    }
    log(QStringLiteral("Unexpected frame of type %1").arg(type));
    channel->close();
    return false;
}

void AppDelegate::ioFrameChannelDidReceiveFrameOfType(
    const std::shared_ptr<PTChannel>&, quint32 type, quint32 tag,
    const std::shared_ptr<const PTData>& payload) {
    // A long pass over the project may hold the timer up, and the event loop looks at sockets
    // first.
    if (!clearToSend_ && activationDue_.hasExpired()) {
        activate();
    }
    const Command* command = commandForType(type);
    if (!clearToSend_ || command == nullptr) {
        return;
    }
    const auto request = command->readsPayload ? dictionaryFromPayload(payload) : std::nullopt;
    if (const Reply reply = (this->*command->answer)(request)) {
        sendContent(*reply, tag);
    }
}

void AppDelegate::sendContent(const QVariantMap& content, quint32 tag) {
    if (connectedChannel_ == nullptr) {
        return;
    }
    connectedChannel_->sendFrameOfType(
        kFrameReply, tag, createReferencingDispatchData(content),
        [](const std::optional<Error>& error) {
            if (error) {
                // The same words for every reply, deliberately: they are what people search for.
                log(QStringLiteral("Failed to send fileTree: %1").arg(error->description()));
            }
        });
}

AppDelegate::Reply AppDelegate::navigator(const std::optional<Request>& request) {
    KZDataManager& manager = collaborators_.dataManager;
    if (request && request->contains(QStringLiteral("identifier"))) {
        const auto identifier = textForKey(request, QStringLiteral("identifier"));
        const Reply reply = identifier ? manager.navigatorDictionaryForID(identifier) : Reply();
        // Deliberate: a stale identifier is answered with the whole tree, not with silence; and so
        // is one that is no text, as nothing has it.
        return reply ? reply : rootNavigator(std::nullopt);
    }
    if (const auto superclass = textForKey(request, QStringLiteral("superclass"))) {
        return manager.navigatorDictionaryForSuperclass(*superclass);
    }
    return std::nullopt;
}

AppDelegate::Reply AppDelegate::openFileAtLine(const std::optional<Request>& request) {
    const auto path = textForKey(request, QStringLiteral("path"));
    const QVariant line = request ? request->value(QStringLiteral("line")) : QVariant();
    collaborators_.dataManager.openFile(path, line);
    return std::nullopt;
}

AppDelegate::Reply AppDelegate::rootNavigator(const std::optional<Request>&) {
    return collaborators_.dataManager.navigatorDictionaryForID(std::nullopt);
}

AppDelegate::Reply AppDelegate::shortcuts(const std::optional<Request>&) {
    return collaborators_.dataManager.shortcutsDictionary();
}

AppDelegate::Reply AppDelegate::elements(const std::optional<Request>& request) {
    if (flagForKey(request, QStringLiteral("autoUpdate"))) {
        return elementsOfActiveFile();
    }
    const auto identifier = textForKey(request, QStringLiteral("identifier"));
    if (!identifier || identifier->isEmpty()) {
        return std::nullopt;
    }
    return collaborators_.dataManager.elementsDictionaryForObjectID(*identifier);
}

AppDelegate::Reply AppDelegate::elementsOfActiveFile() {
    const auto identifier = collaborators_.dataManager.objectIDForActiveFile();
    if (!identifier) {
        log(QStringLiteral("ERROR: No active ID"));
        return std::nullopt;
    }
    const Reply reply = collaborators_.dataManager.elementsDictionaryForObjectID(*identifier);
    if (!reply || !isSourceFile(reply->value(QStringLiteral("path")).toString())) {
        return std::nullopt;
    }
    return reply;
}

AppDelegate::Reply AppDelegate::allowedFileTypes(const std::optional<Request>&) {
    return collaborators_.dataManager.allowedFileTypesDictionary();
}

AppDelegate::Reply AppDelegate::changeFileType(const std::optional<Request>& request) {
    if (!request) {
        return std::nullopt;
    }
    return collaborators_.dataManager.changeFiletypeAllowanceWithDictionary(*request);
}

AppDelegate::Reply AppDelegate::superclasses(const std::optional<Request>&) {
    return collaborators_.dataManager.superclassDictionary();
}

AppDelegate::Reply AppDelegate::openWithDesktop(const std::optional<Request>& request) {
    if (const auto path = textForKey(request, QStringLiteral("path"))) {
        collaborators_.desktop.openFile(*path);
    }
    return std::nullopt;
}

AppDelegate::Reply AppDelegate::projectFolder(const std::optional<Request>&) {
    const auto& path = collaborators_.dataManager.projectPath();
    if (!path) {
        return std::nullopt;
    }
    return QVariantMap{{QStringLiteral("project"), *path}};
}

AppDelegate::Reply AppDelegate::pickProject(const std::optional<Request>& request) {
    if (request) {
        collaborators_.dataManager.open();
    }
    return std::nullopt;
}

AppDelegate::Reply AppDelegate::versionHandshake(const std::optional<Request>&) {
    return QVariantMap{{QStringLiteral("version"), majorMinorVersion(collaborators_.version)}};
}

} // namespace navrel
