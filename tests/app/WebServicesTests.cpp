// The update check at start, the manual, and the page about the program.

#include "app/StateSentences.h"
#include "app/StatusMenu.h"
#include "app/WebServer.h"
#include "tests/TestWebServer.h"
#include "tests/app/ServedProject.h"

namespace navrel {
namespace {

class WebServicesTest : public ServedProject {
protected:
    void SetUp() override { launchUnconnected(); }

    /// Starts another delegate, of this version, beside a server.
    void startWith(const QUrl& server, const QString& version) {
        other_ = AppDelegate::create(
            {*manager_, desktop_, *defaults_, version, [this] { return hub_; }, server});
        other_->setMenu(&menu_, nullptr);
        other_->applicationDidFinishLaunching();
    }
    void startWithVersionFile(const QByteArray& text, const QString& version) {
        const TestWebServer server(TestWebServer::text(text));
        url_ = server.url();
        startWith(url_, version);
        EXPECT_EQ(server.requests(),
                  std::vector<std::string>{"GET /apps/Navrel/version.txt HTTP/1.1"});
    }

    /// What users read about updates.
    QString sentence() const {
        ProgramFacts facts;
        other_->addFacts(facts);
        return sentenceOf(facts.update).text;
    }

    QUrl url_;
    StatusMenu menu_;
    std::shared_ptr<AppDelegate> other_;
};

const QStringList kOnlyStatusItem{QStringLiteral("status item")};
const QStringList kAlertFirst{QStringLiteral("alert"), QStringLiteral("status item")};

TEST_F(WebServicesTest, theSameVersionOnTheServerShowsNoAlert) {
    startWithVersionFile("1.4.2", QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.events, kOnlyStatusItem);
}

TEST_F(WebServicesTest, theStateSaysWhatTheServerSaid) {
    startWithVersionFile("1.4.2", QStringLiteral("1.4.2"));
    EXPECT_EQ(sentence(), QStringLiteral("This is the latest version."));
    startWithVersionFile("1.5", QStringLiteral("1.4.2"));
    EXPECT_EQ(sentence(), QStringLiteral("Another version is available: 1.5."));
    startWith(QUrl(QStringLiteral("http://127.0.0.1:9")), QStringLiteral("1.4.2"));
    EXPECT_EQ(sentence(), QStringLiteral("The update server did not answer at start-up."));
    startWith({}, QStringLiteral("1.4.2"));
    EXPECT_EQ(sentence(), QStringLiteral("Navrel asks no server for updates."));
}

TEST_F(WebServicesTest, anEmptyVersionFileShowsNoAlert) {
    startWithVersionFile("", QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.events, kOnlyStatusItem);
}

TEST_F(WebServicesTest, anOlderVersionIsOfferedAsANewOneBeforeTheStatusItemExists) {
    startWithVersionFile("1.4.1", QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.events, kAlertFirst);
    EXPECT_EQ(
        desktop_.alertTexts,
        (QStringList{QStringLiteral("Navrel update"),
                     QStringLiteral("New version (1.4.1) of the Navrel OSX client available:"),
                     QStringLiteral("Download"), QStringLiteral("OK")}));
    EXPECT_TRUE(desktop_.openedURLs.isEmpty());
}

TEST_F(WebServicesTest, aLineBreakAtTheEndShowsTheAlert) {
    startWithVersionFile("1.4.2\n", QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.events, kAlertFirst);
    EXPECT_EQ(desktop_.alertTexts.at(1),
              QStringLiteral("New version (1.4.2\n) of the Navrel OSX client available:"));
}

TEST_F(WebServicesTest, aVersionThatLooksLikeAPlaceholderIsShownAsItIs) {
    startWithVersionFile("%1%2", QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.alertTexts.at(1),
              QStringLiteral("New version (%1%2) of the Navrel OSX client available:"));
}

TEST_F(WebServicesTest, downloadHandsTheLatestReleaseToTheDesktop) {
    desktop_.alertAnswer = kAlertFirstButtonReturn;
    startWithVersionFile("2.0", QStringLiteral("1.4.2"));
    QUrl latest = url_;
    latest.setPath(QStringLiteral("/apps/Navrel/Navrel-Latest.zip"));
    EXPECT_EQ(desktop_.openedURLs, QList<QUrl>{latest});
}

TEST_F(WebServicesTest, aDownloadThatTheDesktopRefusesIsLogged) {
    desktop_.alertAnswer = kAlertFirstButtonReturn;
    desktop_.opensURLs = false;
    log_.take();
    startWithVersionFile("2.0", QStringLiteral("1.4.2"));
    EXPECT_TRUE(log_.messages().contains(QStringLiteral("Failed to open url: ") + url_.toString() +
                                         QStringLiteral("/apps/Navrel/Navrel-Latest.zip")));
}

TEST_F(WebServicesTest, withoutAnAnswerStartUpGoesOnSilently) {
    log_.take();
    {
        const TestWebServer server(TestWebServer::text("2.0", "404 Not Found"));
        startWith(server.url(), QStringLiteral("1.4.2"));
        url_ = server.url();
    }
    other_.reset();
    startWith(url_, QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.events, kOnlyStatusItem + kOnlyStatusItem);
    EXPECT_EQ(log_.take(), QStringList());
}

TEST_F(WebServicesTest, theStatusItemGetsTheMenusImage) {
    startWith(QUrl(), QStringLiteral("1.4.2"));
    EXPECT_EQ(desktop_.statusItemImage, QStringLiteral(":/MenuIcon.png"));
}

TEST_F(WebServicesTest, theManualIsThatOfTheFullVersion) {
    startWith(QUrl(QStringLiteral("http://127.0.0.1:9")), QStringLiteral("1.4.2"));
    other_->manual();
    EXPECT_EQ(
        desktop_.openedURLs,
        QList<QUrl>{QUrl(QStringLiteral("http://127.0.0.1:9/apps/Navrel/Navrel-v1.4.2.pdf"))});
}

TEST_F(WebServicesTest, withoutAServerTheManualIsTheInstalledOne) {
    AppDelegate::Collaborators world = {*manager_,
                                        desktop_,
                                        *defaults_,
                                        QStringLiteral("2.0"),
                                        [this] { return hub_; },
                                        QUrl(QStringLiteral("http://navrel.invalid"))};
    world.installedManual = QStringLiteral("/usr/share/doc/navrel/manual.md");
    const auto delegate = AppDelegate::create(world);
    delegate->manual();
    EXPECT_EQ(desktop_.openedFiles, QStringList{world.installedManual});
    EXPECT_TRUE(desktop_.openedURLs.isEmpty());

    world.webServer = QUrl(QStringLiteral("http://127.0.0.1:9"));
    AppDelegate::create(world)->manual();
    EXPECT_EQ(desktop_.openedFiles.size(), 1);
    EXPECT_EQ(desktop_.openedURLs.size(), 1);
}

TEST_F(WebServicesTest, theManualOfAVersionOfTwoPartsNamesThem) {
    startWith(QUrl(QStringLiteral("http://127.0.0.1:9")), QStringLiteral("2.0"));
    other_->manual();
    EXPECT_EQ(desktop_.openedURLs.value(0).path(), QStringLiteral("/apps/Navrel/Navrel-v2.0.pdf"));
}

TEST_F(WebServicesTest, aManualThatTheDesktopRefusesIsLogged) {
    startWith(QUrl(QStringLiteral("http://127.0.0.1:9")), QStringLiteral("2.0"));
    desktop_.opensURLs = false;
    log_.take();
    other_->manual();
    EXPECT_EQ(log_.messages(),
              QStringList{QStringLiteral(
                  "Failed to open url: http://127.0.0.1:9/apps/Navrel/Navrel-v2.0.pdf")});
}

TEST_F(WebServicesTest, aboutLoadsThePageAnewEachTime) {
    delegate_->about();
    delegate_->about();
    ASSERT_EQ(desktop_.aboutPages.size(), 2);
    const QString page = desktop_.aboutPages.at(0);
    EXPECT_TRUE(page.contains(version_));
    EXPECT_TRUE(page.contains(manager_->applicationDocumentsDirectory()));
    EXPECT_TRUE(page.contains(defaults_->fileName()));
    EXPECT_FALSE(page.contains(QStringLiteral("%VERSION%")));
    EXPECT_FALSE(page.contains(QStringLiteral("%STORE%")));
    EXPECT_FALSE(page.contains(QStringLiteral("%PREFERENCES%")));
}

TEST(WebServer, theEnvironmentNamesTheServer) {
    qputenv("NAVREL_SERVER", "http://127.0.0.1:8080");
    EXPECT_EQ(webServer(), QUrl(QStringLiteral("http://127.0.0.1:8080")));
    qunsetenv("NAVREL_SERVER");
    EXPECT_EQ(webServer(), QUrl(QStringLiteral("http://navrel.invalid")));
}

TEST(WebServer, aValueThatNamesNoServerIsLoggedAndIgnored) {
    const LogRecorder log;
    for (const char* value : {"127.0.0.1:8080", "ftp://example.org", "http://", "http://a b"}) {
        qputenv("NAVREL_SERVER", value);
        EXPECT_EQ(webServer(), QUrl(QStringLiteral("http://navrel.invalid"))) << value;
        EXPECT_EQ(log.messages().value(log.messages().size() - 1),
                  QStringLiteral("Ignoring NAVREL_SERVER, which is not of the form "
                                 "\"http://HOST[:PORT]\": ") +
                      QLatin1String(value));
    }
    qunsetenv("NAVREL_SERVER");
    EXPECT_EQ(log.messages().size(), 4);
}

} // namespace
} // namespace navrel
