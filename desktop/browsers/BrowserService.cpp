#include "desktop/browsers/BrowserService.h"

#include "app/AppDelegate.h"
#include "app/ProgramVersion.h"
#include "desktop/browsers/BrowserSettings.h"
#include "desktop/browsers/GatherFacts.h"
#include "desktop/windows/PairingWindow.h"
#include "project/Editor.h"
#include "project/KZDataManager.h"
#include "protocol/CompanionKeys.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/core/UserDefaults.h"

#include <QDateTime>
#include <QFile>
#include <QTime>

#include <algorithm>
#include <chrono>
#include <utility>

namespace navrel {

namespace {

/// The data manager looks for another project once a second itself.
constexpr std::chrono::milliseconds kLookInterval{500};

std::string ownersSocket() {
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? std::string() : folder.toStdString() + "/nl.kelvane.Navrel.sock";
}

} // namespace

AccessSettings BrowserService::settingsOf(const Collaborators& collaborators) {
    AccessSettings settings = browserSettings(collaborators.userDefaults);
    settings.folder =
        QFile::encodeName(collaborators.dataManager.applicationDocumentsDirectory()).toStdString();
    settings.socketPath = ownersSocket();
    settings.version = programVersion().toStdString();
    return settings;
}

BrowserService::BrowserService(Collaborators collaborators)
    : collaborators_(std::move(collaborators)),
      host_(collaborators_.dataManager, collaborators_.editor,
            {[this] { publishFileTypes(); }, [this](const QString& label) { deviceDidPair(label); },
             [this] {
                 logAccess();
                 fillWindow();
             },
             [this](bool anyClientFollows) { followEditor(anyClientFollows); }}),
      access_(settingsOf(collaborators_), mapSourceOf(map_), host_) {
    lookTimer_.setInterval(kLookInterval);
    connect(&lookTimer_, &QTimer::timeout, this, [this] { tellWhatChanged(); });
}

BrowserService::~BrowserService() {
    collaborators_.editor.onMove(nullptr);
    access_.stop();
}

void BrowserService::start() {
    NAVREL_ASSERT_MAIN_THREAD();
    tellWhatChanged();
    lookTimer_.start();
    access_.start();
    logAccess();
}

// Which port was taken is known a moment after the start.
void BrowserService::logAccess() {
    const AccessStatus status = access_.status();
    if (!status.problem.empty() && status.problem != loggedStatus_.problem) {
        log(QString::fromStdString(status.problem));
    }
    if (status.addresses != loggedStatus_.addresses) {
        for (const std::string& address : status.addresses) {
            log(QStringLiteral("Browsers are served at %1").arg(QString::fromStdString(address)));
        }
    }
    loggedStatus_ = status;
}

void BrowserService::tellWhatChanged() {
    NAVREL_ASSERT_MAIN_THREAD();
    const QString project = collaborators_.dataManager.pbxProjPath().value_or(QString());
    if (project != project_) {
        project_ = project;
        map_.open(project.toStdString());
    }
    publishFileTypes();
    access_.publishState(programStateOf(facts()));
}

// Only with a project: this may open the store, and a failure to open it shows an alert.
void BrowserService::publishFileTypes() {
    if (!collaborators_.dataManager.rootID()) {
        return;
    }
    std::vector<FileTypeSwitch> types;
    const QVariantList items =
        collaborators_.dataManager.allowedFileTypesDictionary().value(key::items).toList();
    for (const QVariant& item : items) {
        const QVariantMap type = item.toMap();
        types.push_back({type.value(key::extension).toString().toStdString(),
                         type.value(key::allowed).toBool()});
    }
    if (types != fileTypes_) {
        fileTypes_ = std::move(types);
        access_.publishFileTypes(fileTypes_);
    }
}

ProgramFacts BrowserService::facts() {
    NAVREL_ASSERT_MAIN_THREAD();
    const AccessStatus access = access_.status();
    const std::vector<PairedDevice> devices = access_.devices();
    const CodeMapSnapshotPtr snapshot = map_.snapshot();
    ProgramFacts facts =
        gatherFacts({collaborators_.delegate, collaborators_.dataManager, collaborators_.editor,
                     *snapshot, access_.settings(), access, devices, isEditorFollowed_,
                     map_.isWatching(), map_.filesMapped()});
    if (facts.device.state != ProgramFacts::Device::State::connected) {
        deviceSince_.clear();
    } else if (deviceSince_.isEmpty()) {
        deviceSince_ = QTime::currentTime().toString(QStringLiteral("HH:mm"));
    }
    facts.device.since = deviceSince_;
    return facts;
}

// Nothing is asked of an editor while no client could see the answer.
void BrowserService::followEditor(bool anyClientFollows) {
    NAVREL_ASSERT_MAIN_THREAD();
    isEditorFollowed_ = anyClientFollows;
    if (!anyClientFollows) {
        collaborators_.editor.onMove(nullptr);
        return access_.publishActive({}, 0);
    }
    collaborators_.editor.onMove([this](const EditorPosition& position) {
        access_.publishActive(position.path.toStdString(),
                              static_cast<std::uint32_t>(std::max(position.line, 0)));
    });
}

void BrowserService::changeMode(AccessSettings::Mode mode) {
    NAVREL_ASSERT_MAIN_THREAD();
    saveBrowserMode(collaborators_.userDefaults, mode);
    AccessSettings settings = access_.settings();
    settings.mode = mode;
    access_.change(std::move(settings));
    if (mode != AccessSettings::Mode::off) {
        access_.offerPairing();
    }
    fillWindow();
}

// The server has logged it.
void BrowserService::deviceDidPair(const QString& label) {
    NAVREL_ASSERT_MAIN_THREAD();
    collaborators_.notify(QStringLiteral("Paired: %1").arg(label),
                          QStringLiteral("This device can see your project now. \"Phone or "
                                         "Tablet…\" in Navrel's menu lists all of them."));
    fillWindow();
}

// The window.

void BrowserService::showPairingWindow() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!collaborators_.hasDisplay) {
        log(QStringLiteral("No display to show a window on: Phone or Tablet"));
        return;
    }
    if (window_ == nullptr) {
        makeWindow();
    }
    access_.offerPairing();
    window_->bringToFront();
    fillWindow();
}

void BrowserService::makeWindow() {
    PairingWindow::Events events;
    events.didChooseMode = [this](AccessSettings::Mode mode) { changeMode(mode); };
    events.didChooseAddress = [this](const QString& address) {
        chosenAddress_ = address;
        fillWindow();
    };
    events.didAskForNewCode = [this] {
        access_.offerPairing();
        fillWindow();
    };
    events.didForget = [this](int device) {
        access_.forget(device);
        fillWindow();
    };
    events.didSetReadOnly = [this](int device, bool readOnly) {
        access_.setReadOnly(device, readOnly);
    };
    events.isDue = [this] { fillWindow(); };
    window_ = std::make_unique<PairingWindow>(std::move(events));
}

// A code that no window shows need not be renewed.
void BrowserService::fillWindow() {
    if (window_ == nullptr || !window_->isVisible()) {
        return;
    }
    window_->show(pairingContents(access_.settings(), access_.status(), access_.currentPairing(),
                                  access_.devices(), chosenAddress_,
                                  QDateTime::currentDateTimeUtc()));
}

} // namespace navrel
