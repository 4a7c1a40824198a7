#include "tests/web/ServedSite.h"
#include "web/Gzip.h"

#include <QDir>
#include <gmock/gmock.h>

namespace navrel {
namespace {

using ::testing::Contains;
using ::testing::Key;
using ::testing::Not;
using ::testing::Pair;

const std::string kPage = "<!doctype html><title>Navrel</title>";
const std::string kScript = "const page = 'a script that is compressed when the program is built';";

/// A server with a web app of a few files.
class AssetTests : public ServedSite {
protected:
    AssetTests() {
        QDir().mkpath(folder_.filePath(QStringLiteral("app")));
        world.assetFolder = path("app");
        write("app/index.html", gzipped(kPage));
        write("app/main-1F3A9C02.js", gzipped(kScript));
        write("app/manifest.webmanifest", gzipped("{}"));
        write("app/icon.png", "\x89PNG\r\n");
        write("app/half.js", gzipped(kScript).substr(0, 40));
        start();
    }

    WebAnswer ask(const std::string& target, const std::string& fields = {}) const {
        return WebClient(port()).ask("GET " + target + " HTTP/1.1\r\nHost: " + hostField() +
                                     "\r\n" + fields + "\r\n");
    }
};

TEST_F(AssetTests, thePageComesWithoutACookie) {
    const WebAnswer page = ask("/");
    EXPECT_EQ(page.status, 200);
    EXPECT_EQ(page.body, kPage);
    EXPECT_EQ(page.fields.at("content-type"), "text/html; charset=utf-8");
    EXPECT_THAT(page.fields.at("content-security-policy"),
                ::testing::StartsWith("default-src 'none'; script-src 'self';"));
    EXPECT_EQ(page.fields.at("x-content-type-options"), "nosniff");
    EXPECT_EQ(page.fields.at("cross-origin-resource-policy"), "same-origin");
    EXPECT_EQ(ask("/index.html").status, 404);
    EXPECT_EQ(ask("/app/index.html").status, 404);
}

TEST_F(AssetTests, browsersKeepForGoodWhatHasItsHashInItsName) {
    EXPECT_EQ(ask("/main-1F3A9C02.js").fields.at("cache-control"),
              "public, max-age=31536000, immutable");
    for (const char* other : {"/", "/manifest.webmanifest", "/icon.png"}) {
        EXPECT_EQ(ask(other).fields.at("cache-control"), "no-cache") << other;
    }
}

TEST_F(AssetTests, whatWasCompressedIsSentAsItIsWhereTheBrowserTakesThat) {
    const WebAnswer packed = ask("/main-1F3A9C02.js", "Accept-Encoding: br, gzip\r\n");
    EXPECT_EQ(packed.fields.at("content-encoding"), "gzip");
    EXPECT_EQ(packed.body, gzipped(kScript));
    for (const char* none : {"", "Accept-Encoding: br\r\n", "Accept-Encoding: gzip;q=0\r\n"}) {
        const WebAnswer unpacked = ask("/main-1F3A9C02.js", none);
        EXPECT_THAT(unpacked.fields, Not(Contains(Key("content-encoding")))) << none;
        EXPECT_EQ(unpacked.body, kScript) << none;
    }
    const WebAnswer icon = ask("/icon.png", "Accept-Encoding: gzip\r\n");
    EXPECT_THAT(icon.fields, Not(Contains(Key("content-encoding"))));
    EXPECT_THAT(icon.fields, Contains(Pair("content-type", "image/png")));
}

TEST_F(AssetTests, whatABrowserHasIsNotSentAgain) {
    const std::string tag = ask("/").fields.at("etag");
    const WebAnswer known = ask("/", "If-None-Match: " + tag + "\r\n");
    EXPECT_EQ(known.status, 304);
    EXPECT_EQ(known.body, "");
    EXPECT_EQ(ask("/", "If-None-Match: \"another\"\r\n").status, 200);
}

TEST_F(AssetTests, aDamagedFileIsNotThere) {
    EXPECT_EQ(ask("/half.js").status, 404);
}

TEST_F(AssetTests, aProgramWithoutThePageSaysSo) {
    stop();
    world.assetFolder = path("nothing");
    start();
    EXPECT_EQ(ask("/").status, 404);
    EXPECT_THAT(ask("/").body, ::testing::HasSubstr("built without its web app"));
}

} // namespace
} // namespace navrel
