#pragma once

#include "support/core/Clock.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace navrel {

class CDObject;
class Editor;
class EditorControl;
class ManagedObjectContext;
class MenuItem;
class PersistentStoreCoordinator;
class ProjectDialogs;
class ProjectPass;
class ProjectSelection;
class ProjectStore;
class PropertyListIndex;
class UserDefaults;
struct ManagedObjectModel;

/// The project data manager: selects the project, mirrors it into the store once a second, owns the
/// store, and answers the device's view requests. Each operation forwards to a class of project/,
/// to its views, or to the scanning operations. There is one manager in the program. Main thread
/// only.
class KZDataManager {
public:
    /// The world as the manager sees it. Nothing is owned, and everything must outlive the manager.
    struct Collaborators {
        UserDefaults& userDefaults;
        Editor& editor;
        ProjectDialogs& dialogs;
        /// The user's application-support folder, `$XDG_DATA_HOME`, in which the store's own folder
        /// is made.
        QString applicationSupportDirectory;
        Clock& clock = systemClock();
    };

    /// Makes the manager, selects the last known project or lets the user pick one (modal), and
    /// schedules `update` every 1.0 s, the first time one second from now.
    static std::shared_ptr<KZDataManager> init(const Collaborators& collaborators);

    ~KZDataManager();
    KZDataManager(const KZDataManager&) = delete;
    KZDataManager& operator=(const KZDataManager&) = delete;

    // Properties.

    /// Folder that holds the .xcodeproj bundle; nil until the first pass over a project.
    const std::optional<QString>& projectPath() const;
    /// Path of the selected .xcodeproj bundle; nil when no project is selected. The empty string is
    /// a selected project too: the one that automatic selection finds when nothing is active.
    const std::optional<QString>& pbxProjPath() const;
    /// The "objects" of the project file as last read; null if it could not be read. Valid until
    /// the next pass.
    const PropertyListIndex* pbxObjects() const;
    /// Identifier of the project's main group; nil if nothing is loaded.
    std::optional<QString> rootID() const;
    /// Whether Navrel selects the project that is active in the editor.
    bool automaticProjectSelection() const;
    /// Plain setter: the user defaults stay as they are.
    void setAutomaticProjectSelection(bool follow);
    /// Sets the menu entry that shows whether automatic selection is on. Not owned; null, as at
    /// first, for none.
    void setAutomaticProjectSelectionItem(MenuItem* item);
    /// Sets the menu entry that shows the current project. Not owned; null, as at first, for none.
    void setCurrentProjectItem(MenuItem* item);
    /// The manager itself. Despite the name this is a strong reference, deliberately: the manager
    /// lives as long as the process. Tests set it to null to destroy a manager.
    const std::shared_ptr<KZDataManager>& weakSelf() const { return weakSelf_; }
    void setWeakSelf(std::shared_ptr<KZDataManager> self) { weakSelf_ = std::move(self); }

    // The store.

    /// The folder of the store: "nl.kelvane.Navrel" in the application-support folder.
    QString applicationDocumentsDirectory() const;
    /// As above, before there is a manager.
    static QString applicationDocumentsDirectoryIn(const QString& applicationSupportDirectory);
    const ManagedObjectModel& managedObjectModel() const;
    /// Opens the store on first use. Null if that failed: then the error has been presented (modal,
    /// by `StoreErrorWindow`), and the next call tries again.
    PersistentStoreCoordinator* persistentStoreCoordinator();
    /// The single context, made on first use. Null if the coordinator is.
    ManagedObjectContext* managedObjectContext();
    /// Saves at quit. True to terminate now, false to cancel.
    bool applicationShouldTerminate();

    // Selection.

    /// Turns automatic selection off and lets the user pick a project (modal). There is one panel
    /// at a time: while it is shown, further calls only turn automatic selection off.
    void open();
    /// Path of the project that is active in the editor: the empty string when none is, nil when
    /// the editor could not be asked.
    std::optional<QString> activeProject();
    /// Makes a path the selected project and empties the store of the former one, but for the file
    /// types. The next `update` loads it. Nothing happens when it is selected already.
    void changeProjectToPath(const std::optional<QString>& path);

    // Loading.

    /// Selects the editor's project if automatic selection is on, then runs a pass. The timer does
    /// the same once a second, but in slices: if many files have changed, requests are answered in
    /// between.
    void update();
    /// Runs one pass: reads the project file, brings the records up to date, saves. Synchronous,
    /// despite its name. If the pass before changed nothing, this one costs one look-up of a file's
    /// date for each record.
    void updateInBackground();
    /// Builds or refreshes the record of one project object and, depth first, those below it.
    /// `referencePath` is the parent's resolved path.
    void generateObjectForID(const QByteArray& identifier,
                             const std::optional<QByteArray>& referencePath,
                             const std::optional<QByteArray>& parentID, qint32 index);

    // Scanning: each reads the record's file once and stores what it finds. The caller must have
    // deleted the records of earlier findings.

    /// Sets the record's `subclassOf` to the superclass that its header declares, if any.
    void setSuperclassForManagedObject(CDObject& object);
    /// Inserts a CDShortcut for each shortcut comment.
    void generateShortcutsForManagedObject(const CDObject& object);
    /// Inserts a CDElement for each code element.
    void generateElementsForManagedObject(const CDObject& object);

    // Views: the functions of the same names in project/views/, over the store.

    std::optional<QVariantMap> navigatorDictionaryForID(const std::optional<QString>& identifier);
    QVariantMap superclassDictionary();
    QVariantMap navigatorDictionaryForSuperclass(const QString& superclass);
    QVariantMap allowedFileTypesDictionary();
    QStringList allowedFileTypes();
    /// Saved by the next pass.
    QVariantMap changeFiletypeAllowanceWithDictionary(const QVariantMap& request);
    QVariantMap shortcutsDictionary();
    std::optional<QVariantMap> elementsDictionaryForObjectID(const QString& identifier);

    // The editor.

    /// Identifier of the file that is active in the editor, found by its name; nil when there is
    /// none, or several files have that name.
    std::optional<QString> objectIDForActiveFile();
    /// Shows a file in the editor and, where a line (a number or a decimal text) is given, selects
    /// it. Without a path the line is selected in the file in front, by an editor that can.
    void openFile(const std::optional<QString>& path, const QVariant& line);

private:
    explicit KZDataManager(const Collaborators& collaborators);
    void scheduleUpdates(Clock& clock);
    void continueLater(Clock& clock);
    bool isDialogShown() const;
    bool runPass(qint64 bytesToScan, bool resumes);

    std::shared_ptr<KZDataManager> weakSelf_;
    std::unique_ptr<ProjectStore> store_;
    std::unique_ptr<ProjectSelection> selection_;
    std::unique_ptr<ProjectPass> pass_;
    std::unique_ptr<EditorControl> editor_;
    std::unique_ptr<ScheduledCall> updates_;
    std::unique_ptr<ScheduledCall> nextSlice_; ///< while a pass is to be continued
};

} // namespace navrel
