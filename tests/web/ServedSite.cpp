#include "tests/web/ServedSite.h"

#include <QFile>

#include <boost/json.hpp>

namespace navrel {

void RecordingHost::record(std::string what) {
    const std::lock_guard lock(mutex_);
    asked_.push_back(std::move(what));
}

std::vector<std::string> RecordingHost::asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
}

void RecordingHost::openFile(const std::string& absolutePath, std::uint32_t line,
                             std::uint32_t column, Reply reply) {
    record("open " + absolutePath + ':' + std::to_string(line) +
           (column > 0 ? ':' + std::to_string(column) : std::string()));
    if (outcome) {
        reply(*outcome);
    }
}

void RecordingHost::goBack(Reply reply) {
    record("back");
    if (outcome) {
        reply(*outcome);
    }
}

void RecordingHost::switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) {
    for (const FileTypeSwitch& each : switches) {
        record("switch " + each.extension + (each.allowed ? " on" : " off"));
    }
    reply({true, "", "", ""});
}

void RecordingHost::devicePaired(const std::string& label) {
    record("paired " + label);
}

MapSource PublishedMap::source() {
    return {[this] {
                const std::lock_guard lock(mutex_);
                return snapshot_;
            },
            [this](CodeMap::Observer observer) {
                const std::lock_guard lock(mutex_);
                observers_[++lastToken_] = std::move(observer);
                return lastToken_;
            },
            [this](std::uint64_t token) {
                const std::lock_guard lock(mutex_);
                observers_.erase(token);
            },
            [this](const CodeMapSnapshot&) {
                if (beforeChanges) {
                    beforeChanges();
                }
                return boost::json::object{{"state", "noRepository"}};
            }};
}

void PublishedMap::publish(CodeMapSnapshot snapshot, CodeMap::Change change) {
    const std::lock_guard lock(mutex_);
    change.revision = snapshot.revision();
    snapshot_ = std::make_shared<CodeMapSnapshot>(std::move(snapshot));
    for (const auto& [token, observer] : observers_) {
        observer(change);
    }
}

ServedSite::ServedSite() {
    write("Notes.txt", "one\ntwo\nthree\n");
    write("TideView.swift", "class TideView: UIView {\n    func rise() {}\n}\n");
    tide = project.addFile("TideView.swift", [](OutlineBuilder& outline) {
        outline.open({SymbolKind::classType, Access::unstated, 1, "TideView",
                      "class TideView: UIView", "UIView"});
        outline.add({SymbolKind::method, Access::unstated, 2, "rise()", "func rise()", ""}, 2);
        outline.close(3);
        outline.addNote(NoteKind::todo, 2, "ask the harbour");
    });
    plain = project.addFile("Notes.txt");
    gone = project.addFile("Gone.swift");
    for (const NodeID id : {tide, plain, gone}) {
        project.node(id).absolutePath = path(project.node(id).name);
    }
    project.node(gone).missing = true;
    map.publish(project.build(), {});

    settings.mode = AccessSettings::Mode::machine;
    settings.port = 0;
    settings.folder = path("kept");
    settings.socketPath = path("owner.sock");
    settings.version = "1.2.3";
    world.wallTime = [this] { return clock.wallTime(); };
    world.now = [this] { return clock.now(); };
    world.privateAddresses = [] { return std::vector<std::string>(); };
    world.limits.requestsPerSecond = 1e9;
    world.limits.requestBurst = 1e9;
}

ServedSite::~ServedSite() = default;

void ServedSite::start() {
    service_ = std::make_unique<WebService>(settings, map.source(), host, world);
    service_->publishFileTypes({{"swift", true}, {"m", false}});
    service_->publishState({});
    ASSERT_TRUE(waitUntil([this] {
        return port() != 0 || settings.mode == AccessSettings::Mode::off;
    })) << service_->status().problem;
}

void ServedSite::write(const std::string& name, const std::string& text) const {
    QFile file(QString::fromStdString(path(name)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.data(), static_cast<qint64>(text.size()));
}

std::string ServedSite::ownPage() const {
    return "Origin: http://" + hostField() + "\r\nX-Navrel: 1\r\n";
}

std::string ServedSite::getBytes(const std::string& target, const std::string& cookie) const {
    return "GET " + target + " HTTP/1.1\r\nHost: " + hostField() + "\r\nCookie: " + cookie +
           "\r\n\r\n";
}

std::string ServedSite::postBytes(const std::string& target, const std::string& body,
                                  const std::string& cookie) const {
    return "POST " + target + " HTTP/1.1\r\nHost: " + hostField() + "\r\n" + ownPage() +
           "Cookie: " + cookie +
           "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

WebAnswer ServedSite::get(const std::string& target, const std::string& cookie) const {
    return WebClient(port()).ask(getBytes(target, cookie));
}

WebAnswer ServedSite::post(const std::string& target, const std::string& body,
                           const std::string& cookie) const {
    return WebClient(port()).ask(postBytes(target, body, cookie));
}

WebAnswer ServedSite::asOwner(const std::string& method, const std::string& target,
                              const std::string& body) const {
    std::string bytes = method + ' ' + target + " HTTP/1.1\r\nHost: localhost\r\n";
    if (!body.empty()) {
        bytes +=
            "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
            "\r\n";
    }
    return WebClient(settings.socketPath).ask(bytes + "\r\n" + body);
}

std::string ServedSite::pair(const std::string& label) {
    const std::string ticket = service_->offerPairing().ticket;
    const WebAnswer answer =
        post("/api/pair", R"({"ticket":")" + ticket + R"(","label":")" + label + "\"}", "");
    EXPECT_EQ(answer.status, 204) << answer.body;
    const auto field = answer.fields.find("set-cookie");
    return field == answer.fields.end() ? std::string()
                                        : field->second.substr(0, field->second.find(';'));
}

WebClient ServedSite::events(const std::string& cookie) const {
    WebClient client(port());
    client.send(getBytes("/api/events", cookie));
    client.readUntil("event: hello\n");
    client.readUntil("\n\n");
    return client;
}

const std::vector<std::string>& everyRoute() {
    static const std::vector<std::string> kRoutes = {"GET /api/state",
                                                     "GET /api/tree",
                                                     "GET /api/files/0000000000000002/outline",
                                                     "GET /api/files/0000000000000002/source",
                                                     "GET /api/search?q=tide",
                                                     "GET /api/types",
                                                     "GET /api/notes",
                                                     "GET /api/changes",
                                                     "GET /api/filetypes",
                                                     "GET /api/events",
                                                     "POST /api/open",
                                                     "POST /api/back",
                                                     "POST /api/filetypes",
                                                     "POST /api/pairing",
                                                     "GET /api/devices",
                                                     "DELETE /api/devices/1",
                                                     "PATCH /api/devices/1",
                                                     "GET /api/nothing"};
    return kRoutes;
}

std::string valueAt(const std::string& json, const std::string& key) {
    const boost::json::value value = boost::json::parse(json).at(key);
    return value.is_string() ? std::string(value.as_string()) : boost::json::serialize(value);
}

} // namespace navrel
