#include "desktop/browsers/BrowserSettings.h"
#include "support/core/UserDefaults.h"
#include "tests/LogRecorder.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using Mode = AccessSettings::Mode;

class BrowserSettingsTest : public ::testing::Test {
protected:
    ~BrowserSettingsTest() override { qunsetenv("NAVREL_BROWSER"); }

    AccessSettings read(const QByteArray& preferences, const char* environment = nullptr) {
        QFile file(folder_.filePath(QStringLiteral("Navrel.conf")));
        if (file.open(QIODevice::WriteOnly)) {
            file.write("[General]\n" + preferences);
        }
        file.close();
        if (environment != nullptr) {
            qputenv("NAVREL_BROWSER", environment);
        } else {
            qunsetenv("NAVREL_BROWSER");
        }
        return browserSettings(UserDefaults(file.fileName()));
    }

    QTemporaryDir folder_;
    LogRecorder log_;
};

TEST_F(BrowserSettingsTest, withoutPreferencesAccessIsOff) {
    EXPECT_EQ(read(""), AccessSettings());
    EXPECT_EQ(read("").mode, Mode::off);
    EXPECT_EQ(read("").port, 2346);
}

TEST_F(BrowserSettingsTest, everyPreferenceIsRead) {
    const AccessSettings settings =
        read("browserAccess=network\nbrowserPort=4000\nbrowserPlainHTTP=true\n"
             "browserCertificate=/c.pem\nbrowserKey=/k.pem\nbrowserHosts=mac.example  mac\n");
    EXPECT_EQ(settings.mode, Mode::network);
    EXPECT_EQ(settings.port, 4000);
    EXPECT_TRUE(settings.plainHTTP);
    EXPECT_EQ(settings.certificateFile, "/c.pem");
    EXPECT_EQ(settings.keyFile, "/k.pem");
    EXPECT_EQ(settings.hosts, (std::vector<std::string>{"mac.example", "mac"}));
    EXPECT_EQ(log_.messages(), QStringList());
}

TEST_F(BrowserSettingsTest, namesAreSeparatedByBlanksOrCommas) {
    const std::vector<std::string> names = {"mac.example", "mac"};
    EXPECT_EQ(read("browserHosts=mac.example mac\n").hosts, names);
    EXPECT_EQ(read("browserHosts=mac.example, mac\n").hosts, names);
    EXPECT_EQ(read("browserHosts=\"mac.example,mac\"\n").hosts, names);
    EXPECT_EQ(read("browserHosts=\n").hosts, std::vector<std::string>());
}

TEST_F(BrowserSettingsTest, whatCannotBeReadIsLoggedAndIgnored) {
    const AccessSettings settings = read("browserAccess=everybody\nbrowserPort=70000\n");
    EXPECT_EQ(settings, AccessSettings());
    EXPECT_EQ(log_.messages(), (QStringList{QStringLiteral("Ignoring browserAccess: everybody"),
                                            QStringLiteral("Ignoring browserPort: 70000")}));
}

TEST_F(BrowserSettingsTest, theEnvironmentWinsForOneRun) {
    EXPECT_EQ(read("browserAccess=network\n", "machine").mode, Mode::machine);
    EXPECT_EQ(read("browserAccess=network\n", "off").mode, Mode::off);
    const AccessSettings settings = read("browserPort=4000\n", "network:5000");
    EXPECT_EQ(settings.mode, Mode::network);
    EXPECT_EQ(settings.port, 5000);
    EXPECT_EQ(read("browserPort=4000\n", "machine").port, 4000);
}

TEST_F(BrowserSettingsTest, anEnvironmentThatSaysNothingSensibleIsLoggedAndIgnored) {
    for (const char* text :
         {"on", "network:", "network:0", "network:65536", "network:http", ":1"}) {
        EXPECT_EQ(read("browserAccess=machine\n", text).mode, Mode::machine) << text;
        EXPECT_EQ(log_.take(),
                  QStringList{QStringLiteral("Ignoring NAVREL_BROWSER: ") + QLatin1String(text)});
    }
}

TEST_F(BrowserSettingsTest, theModeIsKept) {
    UserDefaults defaults(folder_.filePath(QStringLiteral("kept.conf")));
    for (const Mode mode : {Mode::machine, Mode::network, Mode::off}) {
        saveBrowserMode(defaults, mode);
        EXPECT_EQ(browserSettings(defaults).mode, mode);
    }
}

} // namespace
} // namespace navrel
