#include "tests/web/ServedSite.h"
#include "web/Gzip.h"

#include <QDir>
#include <QProcess>
#include <gmock/gmock.h>

#include <boost/json.hpp>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

using ::testing::HasSubstr;

class ShapeTests : public ServedSite {
protected:
    ShapeTests() {
        start();
        cookie = pair();
        QDir().mkpath(folder_.filePath(QStringLiteral("shapes")));
    }

    void keep(const std::string& definition, const std::string& json) const {
        ASSERT_FALSE(json.empty()) << definition;
        write("shapes/" + definition + ".json", json);
    }

    /// The data of the next event of a name.
    static std::string dataOf(WebClient& stream, const std::string& name) {
        stream.readUntil("event: " + name + "\ndata: ");
        const std::string data = stream.readUntil("\n\n");
        return data.substr(0, data.find('\n'));
    }

    std::string cookie;
};

TEST_F(ShapeTests, everyAnswerHasItsShape) {
    ProgramState state;
    state.editorName = "Neovim";
    state.editor = ProgramState::Editor::follows;
    state.device = ProgramState::Device::refused;
    state.deviceReason = "The device is locked.";
    state.messages = {{ProgramState::Message::Level::warning, "Something.", "Do this."}};
    service_->publishState(state);
    service_->publishActive(path("TideView.swift"), 2);
    WebClient stream(port());
    stream.send(getBytes("/api/events", cookie));
    keep("events.hello", dataOf(stream, "hello"));

    keep("state", get("/api/state", cookie).body);
    keep("state-owner", asOwner("GET", "/api/state").body);
    keep("tree", get("/api/tree", cookie).body);
    keep("outline", get("/api/files/0000000000000002/outline", cookie).body);
    keep("source", get("/api/files/0000000000000003/source?from=2&to=9", cookie).body);
    keep("source-behind", get("/api/files/0000000000000003/source?from=9", cookie).body);
    keep("search", get("/api/search?q=tide&kinds=class,file&limit=5", cookie).body);
    keep("types", get("/api/types", cookie).body);
    keep("notes", get("/api/notes", cookie).body);
    keep("fileTypes", get("/api/filetypes", cookie).body);
    keep("changes", get("/api/changes", cookie).body);
    keep("error", get("/api/nothing", cookie).body);
    keep("error-unpaired", get("/api/state", "").body);
    keep("open", post("/api/open", R"({"file":"0000000000000002","line":2})", cookie).body);
    keep("events.opened", dataOf(stream, "opened"));
    keep("open-back", post("/api/back", "{}", cookie).body);
    keep("open-switch",
         post("/api/filetypes", R"({"items":[{"extension":"m","allowed":true}]})", cookie).body);
    keep("pairing", asOwner("POST", "/api/pairing").body);
    keep("devices", asOwner("GET", "/api/devices").body);

    project.addFile("New.swift");
    map.publish(project.build(2), {2, {5}, true});
    keep("events.revision", dataOf(stream, "revision"));
    keep("events.state", dataOf(stream, "state"));
    keep("treeChanges", get("/api/tree?since=1", cookie).body);
    service_->publishActive("", 0);
    keep("events.active-none", dataOf(stream, "active"));
    service_->publishActive(path("TideView.swift"), 3);
    keep("events.active", dataOf(stream, "active"));
    map.publish(CodeMapSnapshot(), {});
    keep("tree-none", get("/api/tree", cookie).body);
    keep("state-none", get("/api/state", cookie).body);

    QProcess validator;
    validator.setProcessChannelMode(QProcess::MergedChannels);
    validator.start(QStringLiteral("python3"),
                    {QStringLiteral(NAVREL_SOURCE_FOLDER "/tests/web/validate-shapes.py"),
                     QStringLiteral(NAVREL_SOURCE_FOLDER "/protocol/shapes.schema.json"),
                     folder_.filePath(QStringLiteral("shapes"))});
    ASSERT_TRUE(validator.waitForFinished(120'000));
    EXPECT_EQ(validator.exitCode(), 0) << validator.readAll().toStdString();
}

TEST_F(ShapeTests, theTreeIsCompressedAndTagged) {
    const std::string start =
        "GET /api/tree HTTP/1.1\r\nHost: " + hostField() + "\r\nCookie: " + cookie + "\r\n";
    const WebAnswer unpacked = WebClient(port()).ask(start + "\r\n");
    const WebAnswer packed = WebClient(port()).ask(start + "Accept-Encoding: gzip, br\r\n\r\n");
    EXPECT_EQ(packed.fields.at("content-encoding"), "gzip");
    EXPECT_EQ(gunzipped(packed.body, 100'000), unpacked.body);
    const std::string tag = unpacked.fields.at("etag");
    EXPECT_EQ(WebClient(port()).ask(start + "If-None-Match: " + tag + "\r\n\r\n").status, 304);
    map.publish(project.build(2), {});
    EXPECT_EQ(WebClient(port()).ask(start + "If-None-Match: " + tag + "\r\n\r\n").status, 200);
}

TEST_F(ShapeTests, changesAreSentOnlyOfTreesThatTheDeviceHasRead) {
    const std::string whole = get("/api/tree", cookie).body;
    EXPECT_THAT(whole, HasSubstr("\"root\""));
    project.addFile("New.swift");
    map.publish(project.build(2), {});
    EXPECT_THAT(get("/api/tree?since=1", cookie).body, HasSubstr("\"since\":1"));
    // Another device's number may come from another run of the program.
    EXPECT_THAT(get("/api/tree?since=1", pair("phone")).body, HasSubstr("\"root\""));
    EXPECT_THAT(get("/api/tree?since=99", cookie).body, HasSubstr("\"root\""));
}

TEST_F(ShapeTests, opensGoByIdentifierAndTellTheirDeviceAlone) {
    WebClient mine = events(cookie);
    WebClient other = events(pair("phone"));
    const WebAnswer answer = post("/api/open", R"({"file":"0000000000000003","line":2})", cookie);
    EXPECT_EQ(answer.status, 202);
    EXPECT_THAT(host.asked(), ::testing::Contains("open " + path("Notes.txt") + ":2"));
    EXPECT_EQ(dataOf(mine, "opened"), R"({"request":1,"outcome":"opened","editor":"Neovim"})");
    service_->publishActive(path("Notes.txt"), 2);
    EXPECT_THAT(other.readUntil("\n\n"), ::testing::Not(HasSubstr("opened")));
}

TEST_F(ShapeTests, switchesTellTheirOutcomeAndTheOthersThatListsAreOld) {
    WebClient mine = events(cookie);
    WebClient other = events(pair("phone"));
    const std::string body = R"({"items":[{"extension":"m","allowed":true}]})";
    EXPECT_EQ(post("/api/filetypes", body, cookie).body, R"({"request":1})");
    EXPECT_THAT(host.asked(), ::testing::Contains("switch m on"));
    EXPECT_EQ(dataOf(mine, "opened"), R"({"request":1,"outcome":"opened"})");
    service_->publishFileTypes({{"swift", true}, {"m", true}});
    EXPECT_EQ(dataOf(other, "revision"), R"({"revision":1,"files":[],"tree":false})");
    EXPECT_THAT(get("/api/filetypes", cookie).body,
                HasSubstr(R"({"extension":"m","allowed":true})"));
}

TEST_F(ShapeTests, filesThatLeftTheProjectAreGone) {
    ASSERT_EQ(get("/api/files/0000000000000003/source", cookie).status, 200);
    map.publish(SnapshotBuilder().build(2), {});
    EXPECT_EQ(get("/api/files/0000000000000003/source", cookie).status, 404);
    EXPECT_EQ(get("/api/files/0000000000000003/outline", cookie).status, 404);
    EXPECT_EQ(post("/api/open", R"({"file":"0000000000000003"})", cookie).status, 404);
}

TEST_F(ShapeTests, sourcesAreRegularFilesOfTheProject) {
    EXPECT_EQ(valueAt(get("/api/files/0000000000000003/source?from=2&to=2", cookie).body, "text"),
              "two");
    ASSERT_EQ(::unlink(path("Notes.txt").c_str()), 0);
    ASSERT_EQ(::mkfifo(path("Notes.txt").c_str(), 0600), 0);
    EXPECT_EQ(get("/api/files/0000000000000003/source", cookie).status, 404);
}

TEST_F(ShapeTests, aSearchHasFiftyMatchesUnlessAskedForMoreAndFiveHundredAtMost) {
    project.addFile("Many.swift", [](OutlineBuilder& outline) {
        for (std::uint32_t line = 1; line <= 600; ++line) {
            outline.add(declaration(SymbolKind::function, line, "harbour" + std::to_string(line)),
                        line);
        }
    });
    map.publish(project.build(2), {});
    const auto matches = [this](const std::string& limit) {
        const auto answer =
            boost::json::parse(get("/api/search?q=harbour&kinds=function" + limit, cookie).body);
        return answer.at("items").as_array().size();
    };
    EXPECT_EQ(matches(""), 50U);
    EXPECT_EQ(matches("&limit=7"), 7U);
    EXPECT_EQ(matches("&limit=501"), 500U);
    EXPECT_EQ(matches("&limit=18446744073709551615"), 500U);
}

TEST_F(ShapeTests, aRepositoryThatIsSlowHoldsUpNoOtherRequest) {
    std::mutex reading;
    reading.lock();
    map.beforeChanges = [&reading] { const std::lock_guard wait(reading); };
    WebClient waiting(port());
    waiting.send(getBytes("/api/changes", cookie));
    EXPECT_EQ(get("/api/tree", cookie).status, 200);
    EXPECT_EQ(get("/api/search?q=tide", cookie).status, 200);
    EXPECT_EQ(get("/api/state", cookie).status, 200);
    reading.unlock();
    EXPECT_EQ(waiting.answer().status, 200);
}

TEST_F(ShapeTests, manyChangedFilesAreOneResync) {
    WebClient stream = events(cookie);
    CodeMap::Change change;
    change.files.resize(1001, 2);
    map.publish(project.build(2), change);
    EXPECT_EQ(stream.readUntil("\n\n"), "event: resync\ndata: {}\n\n");
}

} // namespace
} // namespace navrel
