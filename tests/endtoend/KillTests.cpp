// What a SIGKILL at any moment may cost: nothing that was saved.

#include "tests/SmallProject.h"
#include "tests/TestDevice.h"
#include "tests/WaitUntil.h"
#include "tests/endtoend/NavrelProcess.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <sqlite3.h>

namespace navrel {
namespace {

/// The "allowed" of a file type as the store's file holds it, read by SQLite alone; nothing while
/// there is no such row.
std::optional<int> savedSwitch(const QString& storeFile, const char* extension) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    std::optional<int> allowed;
    if (sqlite3_open_v2(storeFile.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr) ==
            SQLITE_OK &&
        sqlite3_busy_timeout(database, 5000) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "SELECT allowed FROM CDFiletype WHERE extension = ?", -1,
                           &statement, nullptr) == SQLITE_OK &&
        sqlite3_bind_text(statement, 1, extension, -1, SQLITE_STATIC) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW) {
        allowed = sqlite3_column_int(statement, 0);
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return allowed;
}

/// SQLite's own judgement of the file: "ok" for a sound one.
QByteArray integrity(const QString& storeFile) {
    sqlite3* database = nullptr;
    sqlite3_stmt* statement = nullptr;
    QByteArray judgement = "unreadable";
    if (sqlite3_open_v2(storeFile.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE,
                        nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(database, "PRAGMA integrity_check", -1, &statement, nullptr) ==
            SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW) {
        judgement = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return judgement;
}

TEST(Kill, aKillAtAnyMomentLosesNoSwitchThatWasSaved) {
    constexpr int kKills = 50;
    // The first pass and its save begin a second after the start-up, which takes some tenths.
    constexpr int kFirstPassMilliseconds = 900;
    constexpr int kLatestKillMilliseconds = 1400;
    SmallProject project;
    project.writeFile(QStringLiteral("a.h"), "\n");
    project.addEntry("A", "a.h");
    NavrelProcess navrel;
    navrel.setLastKnownProject(project.bundle());
    TestDevice device;
    ASSERT_TRUE(device.listen());

    // A switch that has been saved once.
    ASSERT_TRUE(navrel.start());
    ASSERT_TRUE(device.waitForConnection());
    ASSERT_TRUE(device.waitUntilServed());
    const QVariantMap off = {{QStringLiteral("extension"), QStringLiteral("h")},
                             {QStringLiteral("allowed"), 0}};
    ASSERT_TRUE(waitUntil([&] {
        return device.ask(206, off).has_value() && savedSwitch(navrel.storeFile(), "h") == 0;
    }));
    navrel.kill();
    // Nobody would accept the connections of the rounds, and a full backlog holds the program up.
    device.stopListening();
    device.disconnect();

    auto* random = QRandomGenerator::global();
    for (int round = 0; round < kKills; ++round) {
        // New types keep the saves of start-up and first pass different from one another.
        const QByteArray name = "f." + QByteArray::number(round);
        project.writeFile(QString::fromUtf8(name), "\n");
        project.addEntry("F" + QByteArray::number(round), name);
        const int killAfter =
            round % 2 == 0 ? random->bounded(kFirstPassMilliseconds)
                           : random->bounded(kFirstPassMilliseconds, kLatestKillMilliseconds);
        SCOPED_TRACE(killAfter);
        ASSERT_TRUE(navrel.start());
        QElapsedTimer sinceStart;
        sinceStart.start();
        waitUntil([&] { return sinceStart.elapsed() >= killAfter; });
        ASSERT_TRUE(navrel.isRunning());
        navrel.kill();

        ASSERT_EQ(integrity(navrel.storeFile()), "ok") << round;
        ASSERT_EQ(savedSwitch(navrel.storeFile(), "h"), 0) << round;
    }
}

} // namespace
} // namespace navrel
