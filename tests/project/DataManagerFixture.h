#pragma once

#include "project/KZDataManager.h"
#include "project/store/ManagedObjectContext.h"
#include "support/core/Log.h"
#include "support/core/UserDefaults.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"
#include "tests/FakeClock.h"
#include "tests/FakeEditor.h"
#include "tests/project/Fakes.h"
#include "tests/project/ProjectText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace navrel {

/// A data manager in a scratch world: a project folder, preferences and a store of its own, fakes
/// around it. The manager is made when it is first asked for, so that a test can prepare its start.
class DataManagerTest : public ::testing::Test {
protected:
    /// A source that holds one shortcut and one element, whatever its extension.
    static constexpr const char* kSource = "// navrel: here\n";

    DataManagerTest() {
        previousLog_ =
            setLogReceiver([this](const QString& m) { logged.push_back(m.toStdString()); });
    }
    ~DataManagerTest() override {
        endManager();
        setLogReceiver(previousLog_);
    }

    KZDataManager& manager() {
        if (manager_ == nullptr) {
            manager_ = KZDataManager::init({defaults, editor, dialogs, supportFolder(), clock});
        }
        return *manager_;
    }

    /// Lets the manager go, as the end of the process does.
    void endManager() {
        if (manager_ != nullptr) {
            manager_->setWeakSelf(nullptr);
            manager_ = nullptr;
        }
    }

    ManagedObjectContext& context() { return *manager().managedObjectContext(); }

    QString supportFolder() const { return scratch_.filePath(QStringLiteral("support/nested")); }
    QString storeFolder() const { return supportFolder() + QStringLiteral("/nl.kelvane.Navrel"); }
    QString storePath() const {
        return storeFolder() + QStringLiteral("/OSXCoreDataObjC.storedata");
    }

    /// The folder that holds the project.
    QString folder() const {
        return QDir(scratch_.path()).canonicalPath() + QStringLiteral("/work");
    }
    QString bundle() const { return folder() + QStringLiteral("/App.xcodeproj"); }
    QString pathOf(const char* name) const { return folder() + QLatin1Char('/') + shownUTF8(name); }
    std::string pathText(const char* name) const { return pathOf(name).toStdString(); }

    static void write(const QString& path, const QByteArray& bytes) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    /// Writes a file of the project, with the folders above it.
    void writeFile(const char* name, const QByteArray& bytes = kSource) {
        write(pathOf(name), bytes);
    }
    void writeFolder(const char* name) { ASSERT_TRUE(QDir().mkpath(pathOf(name))); }
    void writeProject(const QByteArray& text) {
        write(bundle() + QStringLiteral("/project.pbxproj"), text);
    }
    void writeProject(const ProjectText& text) { writeProject(text.text()); }

    /// Gives a file of the project another date.
    void touch(const char* name, qint64 seconds) {
        const struct timespec times[2]{{seconds, 1}, {seconds, 1}};
        ASSERT_EQ(::utimensat(AT_FDCWD, pathOf(name).toUtf8().constData(), times, 0), 0);
    }

    /// Selects the project and runs one pass.
    void load() {
        defaults.setBool(QStringLiteral("automaticProjectSelection"), false);
        manager().changeProjectToPath(bundle());
        manager().updateInBackground();
    }
    void load(const ProjectText& text) {
        writeProject(text);
        load();
    }
    void pass() { manager().updateInBackground(); }

    const CDObject* object(const char* identifier) {
        return context().lastObjectWithIdentifier(identifier);
    }
    /// The identifiers of all records, in the order of their insertion.
    std::vector<std::string> identifiers() {
        std::vector<std::string> result;
        for (const CDObject* record : context().objects()) {
            result.push_back(record->identifier().value_or("nil").toStdString());
        }
        return result;
    }

    /// The names of the sources scanned since the last call, in order: of those that hold a
    /// shortcut, as `kSource` does.
    std::vector<std::string> takeScans() {
        std::vector<std::string> scans;
        for (const CDShortcut* shortcut : context().shortcuts()) {
            if (shortcut->rowID() > lastScan_) {
                scans.push_back(lastPathComponent(shortcut->path().value_or("")).toStdString());
                lastScan_ = shortcut->rowID();
            }
        }
        return scans;
    }

    std::vector<std::string> takeLog() { return std::exchange(logged, {}); }

    QTemporaryDir scratch_;
    UserDefaults defaults{scratch_.filePath(QStringLiteral("Navrel.conf"))};
    FakeEditor editor;
    FakeDialogs dialogs;
    FakeClock clock;
    std::vector<std::string> logged;

private:
    LogReceiver previousLog_;
    std::shared_ptr<KZDataManager> manager_;
    qint64 lastScan_ = 0; ///< the row of the shortcut inserted last
};

} // namespace navrel
