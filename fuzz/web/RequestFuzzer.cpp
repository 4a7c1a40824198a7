#include "codemap/OutlineBuilder.h"
#include "support/core/Assertion.h"
#include "support/core/Log.h"
#include "web/RequestReader.h"
#include "web/RequestTarget.h"
#include "web/Site.h"

#include <algorithm>
#include <boost/json.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A hostile browser. The first byte says in pieces of which size the rest arrives, and whether it
// comes over the owner's socket; the rest is what it sends. It has a valid cookie, put in place of
// the word "COOKIE", so that routes behind it are reached. Whatever it sends: no answer holds the
// folder of the project, and nothing outside the project is opened.
namespace navrel {
namespace {

constexpr std::string_view kFolder = "/nonexistent/project";
constexpr std::string_view kCookie = "COOKIE";

class Host final : public CompanionHost {
public:
    void openFile(const std::string& absolutePath, std::uint32_t, std::uint32_t,
                  Reply reply) override {
        NAVREL_ASSERT(absolutePath == std::string(kFolder) + "/View.swift");
        reply({true, "Editor", ""});
    }
    void goBack(Reply reply) override { reply({false, "", "Nowhere."}); }
    void switchFileTypes(std::vector<FileTypeSwitch> switches, Reply reply) override {
        for (const FileTypeSwitch& each : switches) {
            NAVREL_ASSERT(each.extension == "swift");
        }
        reply({true, "", ""});
    }
    void devicePaired(const std::string&) override {}
    void accessChanged() override {}
};

CodeMapSnapshotPtr smallProject() {
    OutlineBuilder outline(Language::swift);
    outline.add({SymbolKind::classType, Access::unstated, 1, "View", "class View", ""}, 2);
    MapNode root;
    root.id = 1;
    root.kind = NodeKind::project;
    root.name = "App";
    root.children = {2};
    MapNode file;
    file.id = 2;
    file.kind = NodeKind::file;
    file.name = file.path = "View.swift";
    file.absolutePath = std::string(kFolder) + "/View.swift";
    file.language = Language::swift;
    file.parent = 1;
    file.outline = std::make_shared<Outline>(outline.finish(2));
    CodeMapSnapshot::Content content;
    content.revision = 1;
    content.state = MapState::loaded;
    content.folder = kFolder;
    content.nodes = {std::make_shared<MapNode>(root), std::make_shared<MapNode>(file)};
    return std::make_shared<CodeMapSnapshot>(std::move(content));
}

/// A site without a network, made once.
struct World {
    World() {
        site.setHostNames(HostNames({}, 2346, "desk", {}));
        site.setFileTypes({{"swift", true}});
        cookie = "navrel-" + devices.instance() + '=' + devices.add("fuzzer").token;
    }

    static std::chrono::system_clock::time_point time() { return {}; }

    Limits limits;
    DeviceList devices{"/dev/null/devices.json", &time}; // cannot be kept
    PairingDesk desk{&time};
    Assets assets{"/nonexistent"};
    MapSource map{[snapshot = smallProject()] { return snapshot; }, nullptr, nullptr,
                  [](const CodeMapSnapshot&) { return boost::json::object(); }};
    Host host;
    Site site{{limits, devices, desk, assets, map, host, "Navrel", "1.0",
               [](const std::function<void()>& job) { job(); }}};
    std::string cookie;
};

World& world() {
    static const LogReceiver quiet = setLogReceiver([](const QString&) {});
    static World instance;
    return instance;
}

/// The search repeats what is searched for: a browser that guessed the folder's name reads its own
/// guess.
bool namesFolder(const HTTPRequest& request) {
    const auto target = requestTarget(request.target);
    return target && target->parameter("q").find(kFolder) != std::string_view::npos;
}

void expectHarmless(const HTTPResponse& response, bool mayNameFolder = false) {
    const std::string head = headOf(response, {});
    NAVREL_ASSERT(response.status >= 200 && response.status < 600);
    NAVREL_ASSERT(head.find(kFolder) == std::string::npos);
    NAVREL_ASSERT(mayNameFolder || response.bodyText().find(kFolder) == std::string_view::npos);
    NAVREL_ASSERT(head.find("\r\n\r\n") == head.size() - 4); // no field ends the head early
}

/// False once the connection would end.
bool serve(const HTTPRequest& request, const Caller& caller) {
    auto admitted = world().site.admit(request, caller, {});
    if (const auto* refusal = std::get_if<HTTPResponse>(&admitted)) {
        expectHarmless(*refusal);
        return false;
    }
    const auto& visit = std::get<Site::Visit>(admitted);
    if (visit.runs() == Site::Runs::stream) {
        return false;
    }
    expectHarmless(world().site.answer(visit, request), namesFolder(request));
    return true;
}

void receive(std::string_view bytes, std::size_t piece, const Caller& caller) {
    std::string unread;
    auto reader = std::make_unique<RequestReader>(world().limits);
    while (!bytes.empty() || !unread.empty()) {
        const std::string_view next = bytes.substr(0, piece);
        unread.append(next);
        bytes.remove_prefix(next.size());
        const std::size_t taken = reader->take(unread);
        NAVREL_ASSERT(taken <= unread.size());
        unread.erase(0, taken);
        if (reader->state() == RequestReader::State::refused) {
            expectHarmless(reader->refusal());
            expectHarmless(world().site.redirectToTLS(reader->request()));
            return;
        }
        if (reader->state() == RequestReader::State::complete) {
            if (!serve(reader->request(), caller)) {
                return;
            }
            reader = std::make_unique<RequestReader>(world().limits);
        } else if (taken == 0 && next.empty()) {
            return; // half a request
        }
    }
}

std::string withCookie(std::string_view bytes) {
    std::string text(bytes);
    const auto at = text.find(kCookie);
    return at == std::string::npos ? text : text.replace(at, kCookie.size(), world().cookie);
}

} // namespace
} // namespace navrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace navrel;
    if (size == 0) {
        return 0;
    }
    constexpr unsigned int kOwnerBit = 0x80;
    const std::string bytes = withCookie({reinterpret_cast<const char*>(data) + 1, size - 1});
    const bool isOwner = (data[0] & kOwnerBit) != 0;
    const Caller caller =
        isOwner ? Caller{Caller::Way::owner, {}} : Caller{Caller::Way::plain, "127.0.0.1"};
    world().limits.requestBurst = world().limits.requestsPerSecond = 1e18;
    receive(bytes, std::max<std::size_t>(data[0] & ~kOwnerBit, 1), caller);
    return 0;
}
