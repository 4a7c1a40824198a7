#include "support/core/UserDefaults.h"
#include "tests/LogRecorder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace navrel {
namespace {

using namespace Qt::StringLiterals;

const QString kFlag = QStringLiteral("automaticProjectSelection");
const QString kPath = QStringLiteral("lastKnownProject");

class UserDefaultsTest : public ::testing::Test {
protected:
    QString file() const { return folder_.filePath(QStringLiteral("Navrel.conf")); }

    void write(const QByteArray& text) const {
        QFile defaults(file());
        ASSERT_TRUE(defaults.open(QIODevice::WriteOnly));
        defaults.write(text);
    }

    QByteArray text() const {
        QFile defaults(file());
        return defaults.open(QIODevice::ReadOnly) ? defaults.readAll() : QByteArray();
    }

private:
    QTemporaryDir folder_;
};

TEST_F(UserDefaultsTest, absentKeysHaveNoValue) {
    const UserDefaults defaults(file());

    EXPECT_EQ(defaults.boolForKey(kFlag), std::nullopt);
    EXPECT_EQ(defaults.stringForKey(kPath), std::nullopt);
}

TEST_F(UserDefaultsTest, valuesAreOnTheDiskWhenTheSetterReturns) {
    UserDefaults defaults(file());
    defaults.setBool(kFlag, false);
    defaults.setString(kPath, QStringLiteral("/p/App.xcodeproj"));

    EXPECT_EQ(text(), "[General]\nautomaticProjectSelection=false\n"
                      "lastKnownProject=/p/App.xcodeproj\n");
    const UserDefaults again(file());
    EXPECT_EQ(again.boolForKey(kFlag), false);
    EXPECT_EQ(again.stringForKey(kPath), QStringLiteral("/p/App.xcodeproj"));
}

TEST_F(UserDefaultsTest, theEmptyStringIsAValueAndNothingRemovesTheKey) {
    UserDefaults defaults(file());
    defaults.setString(kPath, QStringLiteral(""));
    EXPECT_EQ(UserDefaults(file()).stringForKey(kPath), QStringLiteral(""));

    defaults.setString(kPath, std::nullopt);
    EXPECT_EQ(UserDefaults(file()).stringForKey(kPath), std::nullopt);
}

TEST_F(UserDefaultsTest, pathsWithCommasQuotesAndOtherScriptsComeBackAsTheyWere) {
    const QString path = QStringLiteral("/a, b/\"c\"/\\d;e=ü漢😀\n/@Invalid()/%20.xcodeproj");
    UserDefaults(file()).setString(kPath, path);

    EXPECT_EQ(UserDefaults(file()).stringForKey(kPath), path);
}

TEST_F(UserDefaultsTest, booleansWrittenByHandAreUnderstood) {
    for (const char* yes : {"true", "YES", "1"}) {
        write(QByteArrayLiteral("[General]\nautomaticProjectSelection=") + yes + '\n');
        EXPECT_EQ(UserDefaults(file()).boolForKey(kFlag), true) << yes;
    }
    for (const char* no : {"false", "NO", "0", "perhaps", ""}) {
        write(QByteArrayLiteral("[General]\nautomaticProjectSelection=") + no + '\n');
        EXPECT_EQ(UserDefaults(file()).boolForKey(kFlag), false) << no;
    }
}

TEST_F(UserDefaultsTest, aListWherePathBelongsIsNoPath) {
    write("[General]\nlastKnownProject=/a, /b\n");
    EXPECT_EQ(UserDefaults(file()).stringForKey(kPath), std::nullopt);
}

TEST_F(UserDefaultsTest, aDamagedFileHasNoValues) {
    write(QByteArray("\0\xff[[General\nlastKnown", 21));
    EXPECT_EQ(UserDefaults(file()).stringForKey(kPath), std::nullopt);
}

TEST_F(UserDefaultsTest, aLockThatAKilledProcessLeftIsRemoved) {
    QFile lock(file() + u".lock"_s);
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.close();
    const UserDefaults defaults(file());
    EXPECT_FALSE(lock.exists());
}

TEST_F(UserDefaultsTest, aLockThatNobodyCanTakeIsNotWaitedFor) {
    ASSERT_TRUE(QDir().mkdir(file() + u".lock"_s));
    UserDefaults(file()).setString(kPath, u"/p"_s);
    EXPECT_EQ(text(), "[General]\nlastKnownProject=/p\n");
}

TEST_F(UserDefaultsTest, whatIsSetAlreadyIsNotWrittenAgain) {
    UserDefaults defaults(file());
    defaults.setString(kPath, std::nullopt);
    EXPECT_FALSE(QFile::exists(file()));
    defaults.setBool(kFlag, true);
    ASSERT_TRUE(QFile::remove(file()));
    defaults.setBool(kFlag, true);
    EXPECT_FALSE(QFile::exists(file()));
}

TEST_F(UserDefaultsTest, aValueReadFromTheFileIsNotWrittenAgain) {
    write("[General]\nautomaticProjectSelection=true\nlastKnownProject=/p\n");
    UserDefaults defaults(file());
    ASSERT_TRUE(QFile::remove(file()));
    defaults.setBool(kFlag, true);
    defaults.setString(kPath, QStringLiteral("/p"));
    EXPECT_FALSE(QFile::exists(file()));
}

TEST_F(UserDefaultsTest, whatIsEditedByHandMeanwhileStays) {
    UserDefaults defaults(file());
    defaults.setBool(kFlag, true);
    write("[General]\nautomaticProjectSelection=true\n\n[Other]\nmine=1\n");
    defaults.setString(kPath, QStringLiteral("/p"));
    EXPECT_EQ(text(), "[General]\nautomaticProjectSelection=true\nlastKnownProject=/p\n\n"
                      "[Other]\nmine=1\n");
}

TEST_F(UserDefaultsTest, aPipeOrADeviceIsNeitherReadNorReplaced) {
    LogRecorder logged;
    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    for (int kind = 0; kind < 2; ++kind) {
        UserDefaults defaults(file());
        EXPECT_EQ(defaults.stringForKey(kPath), std::nullopt);
        EXPECT_EQ(logged.take(), QStringList(u"The preferences cannot be read: "_s + file()));
        defaults.setString(kPath, u"/p"_s);
        defaults.setString(kPath, u"/q"_s);
        EXPECT_EQ(logged.take(), QStringList(u"The preferences cannot be written: "_s + file()));
        EXPECT_EQ(defaults.stringForKey(kPath), u"/q"_s);
        ASSERT_TRUE(QFile::remove(file()));
        ASSERT_TRUE(QFile::link(u"/dev/zero"_s, file()));
    }
}

TEST_F(UserDefaultsTest, aValueThatCouldNotBeWrittenIsWrittenOnceItCan) {
    const LogRecorder logged;
    ASSERT_TRUE(QDir().mkdir(file()));
    UserDefaults defaults(file());
    defaults.setString(kPath, u"/p"_s);
    ASSERT_TRUE(QDir().rmdir(file()));
    defaults.setString(kPath, u"/p"_s);
    EXPECT_EQ(text(), "[General]\nlastKnownProject=/p\n");
}

} // namespace
} // namespace navrel
