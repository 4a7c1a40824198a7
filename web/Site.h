#pragma once

#include "web/Assets.h"
#include "web/BrowserAccess.h"
#include "web/DeviceList.h"
#include "web/EventStreams.h"
#include "web/HTTPMessage.h"
#include "web/HostNames.h"
#include "web/Limits.h"
#include "web/PairingDesk.h"
#include "web/RateLimiter.h"
#include "web/RenderedViews.h"
#include "web/RequestTarget.h"
#include "web/StateView.h"

#include <boost/json/object.hpp>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace navrel {

/// By which way a request came, and from whom.
struct Caller {
    enum class Way {
        plain,
        tls,
        owner, ///< the owner's socket
    };
    Way way = Way::plain;
    std::string address; ///< empty for the owner
};

/// What the site shows and does: every route, and who may use it. It knows no sockets. Network
/// thread, but for `answer` of routes that run elsewhere.
class Site {
public:
    /// What the site works on. All is borrowed and must outlive it.
    struct Parts {
        const Limits& limits;
        DeviceList& devices;
        PairingDesk& pairing;
        const Assets& assets;
        const MapSource& map;
        CompanionHost& host;
        std::string program;
        std::string version;
        /// Has a job done on the network thread; from any thread, nothing once that has ended.
        std::function<void(std::function<void()>)> post;
    };

    /// Where an answer is worked out: what takes long keeps others waiting nowhere else.
    enum class Runs {
        here,       ///< on the network thread
        views,      ///< renders the tree, searches, reads a source
        repository, ///< reads the repository
        stream,     ///< it is an event stream: `openStream`
    };

    struct Route;

    /// A request that may be answered.
    struct Visit {
        const Route* route = nullptr;
        RequestTarget target;
        std::string identifier; ///< the variable part of the path
        Caller::Way way = Caller::Way::plain;
        int device = kOwner;
        bool readOnly = false;
        std::string cookie; ///< the field to set, where the device's cookie is due
        Runs runs() const;
    };

    explicit Site(Parts parts);
    ~Site();
    Site(const Site&) = delete;
    Site& operator=(const Site&) = delete;

    /// Whether a request, of which the head is known, may be answered; else its refusal.
    std::variant<HTTPResponse, Visit> admit(const HTTPRequest& head, const Caller& caller,
                                            std::chrono::steady_clock::time_point now);

    /// The answer to an admitted request, now whole. On the thread that `runs` asks for.
    HTTPResponse answer(const Visit& visit, const HTTPRequest& request);

    /// What plain HTTP on a port of TLS is answered.
    HTTPResponse redirectToTLS(const HTTPRequest& head) const;

    /// Takes in the stream of an admitted request, and greets it. `closeStream` must follow.
    void openStream(EventStream& stream);
    void closeStream(EventStream& stream);

    void setHostNames(HostNames names) { names_ = std::move(names); }
    void setAccess(AccessStatus access);
    void setState(ProgramState state);
    void setFileTypes(std::vector<FileTypeSwitch> types);
    void setActive(ActivePlace active);
    void mapChanged(const CodeMap::Change& change);
    /// Ends what a device has open, and has the others told.
    void deviceGone(int device);
    void devicesChanged();

    const EventStreams& streams() const { return streams_; }
    const AccessStatus& access() const { return access_; }

private:
    using Refusal = std::optional<HTTPResponse>;

    Refusal refuseOutright(const HTTPRequest& head, const Caller& caller,
                           std::chrono::steady_clock::time_point now);
    Refusal refuseStranger(const HTTPRequest& head, const Caller& caller, Visit& visit);
    Refusal refuseForgery(const HTTPRequest& head, const Caller& caller) const;
    Refusal chooseRoute(const HTTPRequest& head, const Caller& caller, Visit& visit) const;
    std::string cookieName(Caller::Way way) const;
    std::string cookieField(Caller::Way way, std::string_view token) const;

    HTTPResponse answerAsset(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerPair(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerState(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerTree(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerOutline(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerSource(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerSearch(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerTypes(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerNotes(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerChanges(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerFileTypes(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerOpen(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerBack(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerSwitches(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerOffer(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerDevices(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerForget(const Visit& visit, const HTTPRequest& request);
    HTTPResponse answerReadOnly(const Visit& visit, const HTTPRequest& request);

    static const std::vector<Route>& routes();

    HTTPResponse pairedResponse(const Visit& visit, std::string_view label);
    CompanionHost::Reply replyTo(int device, std::uint64_t request);
    std::string stateText(bool readOnly) const;
    void endStrangersStreams();
    void tellState();
    void tell(std::string_view event, const boost::json::object& data);
    bool hasFileType(std::string_view extension) const;

    Parts parts_;
    RateLimiter rate_;
    RenderedViews views_;
    EventStreams streams_;
    HostNames names_;
    AccessStatus access_;
    ProgramState state_;
    std::vector<FileTypeSwitch> fileTypes_;
    ActivePlace active_;
    std::string toldActive_; ///< the last `active` that all were told
    std::uint64_t lastRequest_ = 0;
    /// Expires with the site: replies of the host may come later.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
};

} // namespace navrel
