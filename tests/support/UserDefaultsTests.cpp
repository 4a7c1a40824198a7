#include "support/UserDefaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {
namespace {

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

} // namespace
} // namespace navrel
