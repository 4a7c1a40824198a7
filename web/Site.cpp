#include "web/Site.h"

#include "codemap/CodeMapViews.h"
#include "support/core/Log.h"
#include "web/EventQueue.h"
#include "web/Secrets.h"
#include "web/SourceText.h"

#include <QString>

#include <algorithm>
#include <boost/json.hpp>

namespace navrel {

namespace {

namespace json = boost::json;

constexpr std::string_view kAPI = "/api/";
constexpr std::string_view kPairPath = "/api/pair";
constexpr std::size_t kLongestQuery = 200;
constexpr std::uint64_t kDefaultResults = 50;
constexpr std::uint64_t kMostResults = 500;
constexpr std::uint64_t kDefaultSourceLines = 400;

/// The cookies of a Cookie field are separated by semicolons. The first of a name counts.
std::string_view cookieValue(std::string_view field, std::string_view name) {
    while (!field.empty()) {
        const auto end = field.find(';');
        std::string_view pair = field.substr(0, end);
        field.remove_prefix(end == std::string_view::npos ? field.size() : end + 1);
        pair.remove_prefix(std::min(pair.find_first_not_of(' '), pair.size()));
        if (pair.starts_with(name) && pair.substr(name.size()).starts_with('=')) {
            return pair.substr(name.size() + 1);
        }
    }
    return {};
}

bool isJSONType(std::string_view type) {
    std::string_view name = type.substr(0, type.find(';'));
    while (name.ends_with(' ')) {
        name.remove_suffix(1);
    }
    return name == kJSONType;
}

bool changesSomething(Method method) {
    return method != Method::get && method != Method::head;
}

/// The body as an object; nothing for anything else.
std::optional<json::object> objectOf(std::string_view body) {
    constexpr std::size_t kDepth = 4;
    json::parse_options options;
    options.max_depth = kDepth;
    json::error_code error;
    json::value value = json::parse(body, error, {}, options);
    return !error && value.is_object() ? std::optional(std::move(value.get_object()))
                                       : std::nullopt;
}

/// A text of an object; nothing where it is absent or of another kind.
std::optional<std::string_view> textAt(const json::object& object, std::string_view key) {
    const json::value* const value = object.if_contains(key);
    const json::string* const text = value == nullptr ? nullptr : value->if_string();
    return text == nullptr ? std::nullopt : std::optional<std::string_view>(*text);
}

std::optional<bool> flagAt(const json::object& object, std::string_view key) {
    const json::value* const value = object.if_contains(key);
    const bool* const flag = value == nullptr ? nullptr : value->if_bool();
    return flag == nullptr ? std::nullopt : std::optional(*flag);
}

/// The number of a line or a column; 0 where it is absent, nothing where it is none.
std::optional<std::uint32_t> placeAt(const json::object& object, std::string_view key) {
    const json::value* const value = object.if_contains(key);
    if (value == nullptr) {
        return 0;
    }
    json::error_code error;
    const auto number = value->to_number<std::uint32_t>(error);
    return error ? std::nullopt : std::optional(number);
}

std::vector<std::string_view> splitAtCommas(std::string_view text) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const auto comma = text.find(',');
        if (comma != 0) {
            parts.push_back(text.substr(0, comma));
        }
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    }
    return parts;
}

/// The first characters of a query, without half a one.
std::string_view bounded(std::string_view query) {
    std::size_t size = std::min(query.size(), kLongestQuery);
    while (size > 0 && size < query.size() &&
           (static_cast<unsigned char>(query[size]) & 0xC0U) == 0x80U) {
        --size;
    }
    return query.substr(0, size);
}

HTTPResponse notInProject() {
    return errorResponse(404, "The project has no such file.", "Ask for the tree again.");
}

HTTPResponse notUnderstood() {
    return errorResponse(400, "The request is not of the expected shape.");
}

HTTPResponse nothingThere() {
    return errorResponse(404, "There is nothing here.");
}

/// Names the methods that are allowed, in the order of a list.
HTTPResponse notByThisMethod(std::string_view error, const std::string& allowed) {
    HTTPResponse response = errorResponse(405, error);
    response.fields.emplace_back("Allow", allowed);
    return response;
}

std::string_view nameOf(Method method) {
    switch (method) {
    case Method::get:
        return "GET";
    case Method::head:
        return "HEAD";
    case Method::post:
        return "POST";
    case Method::patch:
        return "PATCH";
    case Method::remove:
        return "DELETE";
    case Method::other:
        break;
    }
    return {};
}

HTTPResponse accepted(std::uint64_t request) {
    return jsonResponse(202, json::serialize(json::object{{"request", request}}));
}

HTTPResponse done() {
    HTTPResponse response;
    response.status = 204;
    return response;
}

/// The file with an identifier; null for what is no file of the snapshot.
const MapNode* fileWithIdentifier(const CodeMapSnapshot& snapshot, std::string_view identifier) {
    const auto id = nodeIDFromText(identifier);
    const MapNode* const node = id ? snapshot.node(*id) : nullptr;
    return node != nullptr && node->kind == NodeKind::file ? node : nullptr;
}

} // namespace

struct Site::Route {
    /// Who may use it.
    enum class Right {
        anyone,
        look,   ///< paired devices
        change, ///< of these, those that may open
        owner,  ///< for others, it is not there
    };

    Method method;
    std::string_view path; ///< "*" for the variable part
    Right right;
    Runs runs;
    HTTPResponse (Site::*answer)(const Visit& visit, const HTTPRequest& request);

    /// Where something may be read, its head may be as well; but a stream has no end.
    std::string_view allowedMethods() const {
        return method == Method::get && runs != Runs::stream ? "GET, HEAD" : nameOf(method);
    }
};

const std::vector<Site::Route>& Site::routes() {
    using enum Method;
    using enum Route::Right;
    using enum Runs;
    static const std::vector<Route> kRoutes = {
        {post, kPairPath, anyone, here, &Site::answerPair},
        {get, "/api/state", look, here, &Site::answerState},
        {get, "/api/tree", look, views, &Site::answerTree},
        {get, "/api/files/*/outline", look, views, &Site::answerOutline},
        {get, "/api/files/*/source", look, views, &Site::answerSource},
        {get, "/api/search", look, views, &Site::answerSearch},
        {get, "/api/types", look, views, &Site::answerTypes},
        {get, "/api/notes", look, views, &Site::answerNotes},
        {get, "/api/changes", look, repository, &Site::answerChanges},
        {get, "/api/filetypes", look, here, &Site::answerFileTypes},
        {get, "/api/events", look, stream, nullptr},
        {post, "/api/open", change, here, &Site::answerOpen},
        {post, "/api/back", change, here, &Site::answerBack},
        {post, "/api/filetypes", change, here, &Site::answerSwitches},
        {post, "/api/pairing", owner, here, &Site::answerOffer},
        {get, "/api/devices", owner, here, &Site::answerDevices},
        {remove, "/api/devices/*", owner, here, &Site::answerForget},
        {patch, "/api/devices/*", owner, here, &Site::answerReadOnly},
    };
    return kRoutes;
}

namespace {

/// The variable part of a path that fits a pattern, empty where the pattern has none; nothing where
/// it does not fit.
std::optional<std::string_view> variablePart(std::string_view pattern, std::string_view path) {
    const auto star = pattern.find('*');
    if (star == std::string_view::npos) {
        return pattern == path ? std::optional<std::string_view>("") : std::nullopt;
    }
    const std::string_view end = pattern.substr(star + 1);
    if (path.size() <= star + end.size() || !path.starts_with(pattern.substr(0, star)) ||
        !path.ends_with(end)) {
        return std::nullopt;
    }
    const std::string_view part = path.substr(star, path.size() - star - end.size());
    return part.find('/') == std::string_view::npos ? std::optional(part) : std::nullopt;
}

} // namespace

Site::Runs Site::Visit::runs() const {
    return route == nullptr ? Runs::here : route->runs;
}

Site::Site(Parts parts)
    : parts_(std::move(parts)), rate_(parts_.limits), views_(parts_.map.changes) {}

Site::~Site() = default;

std::variant<HTTPResponse, Site::Visit> Site::admit(const HTTPRequest& head, const Caller& caller,
                                                    std::chrono::steady_clock::time_point now) {
    if (auto refusal = refuseOutright(head, caller, now)) {
        return std::move(*refusal);
    }
    auto target = requestTarget(head.target);
    if (!target) {
        return notUnderstood();
    }
    Visit visit;
    visit.target = std::move(*target);
    visit.way = caller.way;
    if (!visit.target.path.starts_with(kAPI)) {
        if (changesSomething(head.method)) {
            return notByThisMethod("This can only be looked at.", "GET, HEAD");
        }
        return visit;
    }
    for (auto refusal : {refuseStranger(head, caller, visit), refuseForgery(head, caller),
                         chooseRoute(head, caller, visit)}) {
        if (refusal) {
            return std::move(*refusal);
        }
    }
    return visit;
}

/// What no request may have, whatever it asks for.
Site::Refusal Site::refuseOutright(const HTTPRequest& head, const Caller& caller,
                                   std::chrono::steady_clock::time_point now) {
    if (head.hasTransferEncoding) {
        // Where its body ends is not known: what follows is no request.
        HTTPResponse response =
            errorResponse(501, "Requests with a transfer encoding are not taken.");
        response.close = true;
        return response;
    }
    if (caller.way == Caller::Way::owner) {
        return std::nullopt;
    }
    if (head.hostFields != 1 || !names_.isOurs(head.host)) {
        return errorResponse(421, "This server has another name.",
                             "Use an address that Navrel shows, or add the name to browserHosts.");
    }
    if (!rate_.allows(caller.address, now)) {
        HTTPResponse response = errorResponse(429, "Too many requests.", "Wait a second.");
        response.fields.emplace_back("Retry-After", "1");
        return response;
    }
    return std::nullopt;
}

/// Who has no cookie of ours learns nothing but how to get one.
Site::Refusal Site::refuseStranger(const HTTPRequest& head, const Caller& caller, Visit& visit) {
    if (caller.way == Caller::Way::owner) {
        return std::nullopt;
    }
    const std::string_view token = cookieValue(head.cookie, cookieName(caller.way));
    const auto visitor = token.empty() ? std::nullopt : parts_.devices.recognize(token);
    if (visitor) {
        visit.device = visitor->number;
        visit.readOnly = visitor->readOnly;
        visit.cookie = visitor->isCookieDue ? cookieField(caller.way, token) : std::string();
    } else if (visit.target.path != kPairPath) {
        return errorResponse(401, "This device is not paired.",
                             "Scan the code that Navrel shows under \"Phone or Tablet…\".");
    }
    return std::nullopt;
}

/// Other pages cannot send what ours sends with every change.
Site::Refusal Site::refuseForgery(const HTTPRequest& head, const Caller& caller) const {
    if (!changesSomething(head.method)) {
        return std::nullopt;
    }
    const bool isOurs = names_.isOrigin(head.origin, head.host, caller.way == Caller::Way::tls) &&
                        head.ownHeader == "1";
    if (caller.way != Caller::Way::owner && !isOurs) {
        return errorResponse(403, "This request does not come from Navrel's own page.");
    }
    if (head.hasBody && !isJSONType(head.contentType)) {
        return errorResponse(415, "The body must be JSON.");
    }
    return std::nullopt;
}

Site::Refusal Site::chooseRoute(const HTTPRequest& head, const Caller& caller, Visit& visit) const {
    const Method method = head.method == Method::head ? Method::get : head.method;
    std::string allowed;
    for (const Route& route : routes()) {
        const auto part = variablePart(route.path, visit.target.path);
        const bool isThere =
            part && (route.right != Route::Right::owner || caller.way == Caller::Way::owner);
        if (!isThere) {
            continue;
        }
        const bool isHeadOfStream = head.method == Method::head && route.runs == Runs::stream;
        if (route.method == method && !isHeadOfStream) {
            visit.route = &route;
            visit.identifier = *part;
            break;
        }
        allowed.append(allowed.empty() ? "" : ", ").append(route.allowedMethods());
    }
    if (visit.route == nullptr) {
        return allowed.empty() ? nothingThere()
                               : notByThisMethod("This cannot be done here.", allowed);
    }
    if (visit.route->right == Route::Right::change && visit.readOnly) {
        return errorResponse(403, "This device may look, not open.",
                             "Navrel's list of devices has a switch for that.");
    }
    return std::nullopt;
}

/// Under TLS, the prefix has the browser refuse the name to other hosts and to plain HTTP.
std::string Site::cookieName(Caller::Way way) const {
    return (way == Caller::Way::tls ? "__Host-navrel-" : "navrel-") + parts_.devices.instance();
}

std::string Site::cookieField(Caller::Way way, std::string_view token) const {
    const auto life = std::chrono::seconds(DeviceList::kCookieLife).count();
    return cookieName(way) + '=' + std::string(token) +
           "; Path=/; Max-Age=" + std::to_string(life) + "; HttpOnly; SameSite=Strict" +
           (way == Caller::Way::tls ? "; Secure" : "");
}

HTTPResponse Site::answer(const Visit& visit, const HTTPRequest& request) {
    HTTPResponse response = visit.route == nullptr ? answerAsset(visit, request)
                                                   : (this->*visit.route->answer)(visit, request);
    if (!visit.cookie.empty()) {
        response.fields.emplace_back("Set-Cookie", visit.cookie);
    }
    return response;
}

HTTPResponse Site::redirectToTLS(const HTTPRequest& head) const {
    if (head.hostFields != 1 || !names_.isOurs(head.host)) {
        return errorResponse(421, "This server has another name.");
    }
    HTTPResponse response = errorResponse(308, "This port speaks HTTPS.");
    response.fields.emplace_back("Location", "https://" + head.host + '/');
    return response;
}

HTTPResponse Site::answerAsset(const Visit& visit, const HTTPRequest& request) {
    return parts_.assets.answer(visit.target.path, request);
}

HTTPResponse Site::answerPair(const Visit& visit, const HTTPRequest& request) {
    const auto body = objectOf(request.body);
    const auto label = body ? textAt(*body, "label") : std::nullopt;
    const auto ticket = body ? textAt(*body, "ticket") : std::nullopt;
    const auto code = body ? textAt(*body, "code") : std::nullopt;
    if (!label || ticket.has_value() == code.has_value()) {
        return notUnderstood();
    }
    const auto outcome = ticket ? parts_.pairing.tryTicket(*ticket) : parts_.pairing.tryCode(*code);
    switch (outcome) {
    case PairingDesk::Outcome::paired:
        break;
    case PairingDesk::Outcome::wrong:
        parts_.host.accessChanged(); // the last wrong code closes the offer
        return errorResponse(403,
                             ticket ? "This link has been used or has expired."
                                    : "This code is wrong or has expired.",
                             "Navrel shows a new one under \"Phone or Tablet…\".");
    case PairingDesk::Outcome::closed:
        return errorResponse(429, "Too many wrong codes were tried.",
                             "Open \"Phone or Tablet…\" in Navrel again for a new code.");
    }
    return pairedResponse(visit, *label);
}

HTTPResponse Site::pairedResponse(const Visit& visit, std::string_view label) {
    if (visit.device != kOwner && parts_.devices.forget(visit.device)) {
        streams_.endAllOf(visit.device); // the same browser again: its new cookie replaces the old
    }
    const auto pairing = parts_.devices.add(label);
    endStrangersStreams(); // to make room, it may have forgotten another
    log(QStringLiteral("paired the browser \"%1\"").arg(QString::fromStdString(pairing.label)));
    parts_.host.devicePaired(pairing.label);
    devicesChanged();
    HTTPResponse response = done();
    response.fields.emplace_back("Set-Cookie", cookieField(visit.way, pairing.token));
    return response;
}

std::string Site::stateText(bool readOnly) const {
    const auto snapshot = parts_.map.snapshot();
    return json::serialize(stateView({*snapshot, state_, active_, access_, parts_.program,
                                      parts_.version, parts_.devices.count(), readOnly}));
}

HTTPResponse Site::answerState(const Visit& visit, const HTTPRequest&) {
    return jsonResponse(200, stateText(visit.readOnly));
}

HTTPResponse Site::answerTree(const Visit& visit, const HTTPRequest& request) {
    const auto snapshot = parts_.map.snapshot();
    const RenderedViews::Reader reader = {visit.device, request};
    if (visit.target.parameter("since").empty()) {
        return views_.tree(snapshot, reader);
    }
    const auto since = visit.target.number("since", 0);
    return since ? views_.treeSince(snapshot, *since, reader) : notUnderstood();
}

HTTPResponse Site::answerOutline(const Visit& visit, const HTTPRequest& request) {
    const auto snapshot = parts_.map.snapshot();
    const MapNode* const file = fileWithIdentifier(*snapshot, visit.identifier);
    const auto outline = file == nullptr ? std::nullopt : outlineView(*snapshot, file->id);
    return outline ? compressibleResponse(json::serialize(*outline), request) : notInProject();
}

HTTPResponse Site::answerSource(const Visit& visit, const HTTPRequest& request) {
    const auto snapshot = parts_.map.snapshot();
    const MapNode* const file = fileWithIdentifier(*snapshot, visit.identifier);
    if (file == nullptr) {
        return notInProject();
    }
    const auto from = visit.target.number("from", 1);
    const auto to = from ? visit.target.number("to", *from + kDefaultSourceLines - 1) : from;
    if (!from || !to) {
        return notUnderstood();
    }
    const auto lines = linesOfFile(*file, *from, *to);
    if (!lines) {
        return errorResponse(404, "The file cannot be read as a source.");
    }
    const json::object view = {{"id", visit.identifier},
                               {"from", lines->from},
                               {"to", lines->to},
                               {"total", lines->total},
                               {"text", lines->text}};
    return compressibleResponse(json::serialize(view), request);
}

HTTPResponse Site::answerSearch(const Visit& visit, const HTTPRequest& request) {
    const auto limit = visit.target.number("limit", kDefaultResults);
    if (!limit) {
        return notUnderstood();
    }
    SearchRequest search;
    search.query = bounded(visit.target.parameter("q"));
    search.kinds = splitAtCommas(visit.target.parameter("kinds"));
    search.limit = static_cast<std::size_t>(std::min(*limit, kMostResults));
    return compressibleResponse(json::serialize(searchView(*parts_.map.snapshot(), search)),
                                request);
}

HTTPResponse Site::answerTypes(const Visit&, const HTTPRequest& request) {
    return compressibleResponse(json::serialize(typesView(*parts_.map.snapshot())), request);
}

HTTPResponse Site::answerNotes(const Visit&, const HTTPRequest& request) {
    return compressibleResponse(json::serialize(notesView(*parts_.map.snapshot())), request);
}

HTTPResponse Site::answerChanges(const Visit&, const HTTPRequest&) {
    return views_.changes(parts_.map.snapshot());
}

HTTPResponse Site::answerFileTypes(const Visit&, const HTTPRequest&) {
    json::array items;
    for (const FileTypeSwitch& type : fileTypes_) {
        items.push_back({{"extension", type.extension}, {"allowed", type.allowed}});
    }
    return jsonResponse(200, json::serialize(json::object{{"items", std::move(items)}}));
}

HTTPResponse Site::answerOpen(const Visit& visit, const HTTPRequest& request) {
    const auto body = objectOf(request.body);
    const auto identifier = body ? textAt(*body, "file") : std::nullopt;
    const auto line = body ? placeAt(*body, "line") : std::nullopt;
    const auto column = body ? placeAt(*body, "column") : std::nullopt;
    if (!identifier || !line || !column) {
        return notUnderstood();
    }
    const auto snapshot = parts_.map.snapshot();
    const MapNode* const file = fileWithIdentifier(*snapshot, *identifier);
    if (file == nullptr || file->absolutePath.empty()) {
        return notInProject();
    }
    const std::uint64_t number = ++lastRequest_;
    parts_.host.openFile(file->absolutePath, *line, *column, replyTo(visit.device, number));
    return accepted(number);
}

HTTPResponse Site::answerBack(const Visit& visit, const HTTPRequest&) {
    const std::uint64_t number = ++lastRequest_;
    parts_.host.goBack(replyTo(visit.device, number));
    return accepted(number);
}

CompanionHost::Reply Site::replyTo(int device, std::uint64_t request) {
    return [this, device, request, post = parts_.post,
            life = std::weak_ptr<bool>(life_)](const OpenOutcome& outcome) {
        post([this, device, life, data = json::serialize(openedView(request, outcome))] {
            if (!life.expired()) {
                streams_.deliverTo(device, eventText("opened", data));
            }
        });
    };
}

bool Site::hasFileType(std::string_view extension) const {
    return std::any_of(fileTypes_.begin(), fileTypes_.end(),
                       [extension](const auto& type) { return type.extension == extension; });
}

HTTPResponse Site::answerSwitches(const Visit& visit, const HTTPRequest& request) {
    const auto body = objectOf(request.body);
    const json::value* const items = body ? body->if_contains("items") : nullptr;
    if (items == nullptr || !items->is_array()) {
        return notUnderstood();
    }
    std::vector<FileTypeSwitch> switches;
    for (const json::value& item : items->get_array()) {
        const auto extension =
            item.is_object() ? textAt(item.get_object(), "extension") : std::nullopt;
        const auto allowed = item.is_object() ? flagAt(item.get_object(), "allowed") : std::nullopt;
        if (!extension || !allowed) {
            return notUnderstood();
        }
        if (!hasFileType(*extension)) {
            return errorResponse(404, "The project has no files of this type.");
        }
        switches.push_back({std::string(*extension), *allowed});
    }
    const std::uint64_t number = ++lastRequest_;
    parts_.host.switchFileTypes(std::move(switches), replyTo(visit.device, number));
    return accepted(number);
}

HTTPResponse Site::answerOffer(const Visit&, const HTTPRequest&) {
    if (access_.addresses.empty()) {
        return errorResponse(
            409,
            access_.problem.empty() ? "Browsers are not let in."
                                    : std::string_view(access_.problem),
            "Choose \"Phone or Tablet…\" in Navrel's menu, or set browserAccess to "
            "machine or network in Navrel.conf.");
    }
    const PairingOffer offer = parts_.pairing.offer();
    json::object view = {{"url", pairingURL(access_.addresses.front(), offer)},
                         {"code", offer.code},
                         {"expires", textOfTime(offer.ticketExpires)}};
    if (!access_.fingerprint.empty()) {
        view["fingerprint"] = access_.fingerprint;
    }
    parts_.host.accessChanged();
    return jsonResponse(200, json::serialize(view));
}

HTTPResponse Site::answerDevices(const Visit&, const HTTPRequest&) {
    json::array items;
    for (const PairedDevice& device : parts_.devices.devices()) {
        items.push_back({{"number", device.number},
                         {"label", device.label},
                         {"paired", textOfTime(device.paired)},
                         {"seen", textOfTime(device.seen)},
                         {"readOnly", device.readOnly},
                         {"connected", device.connected}});
    }
    return jsonResponse(200, json::serialize(json::object{{"items", std::move(items)}}));
}

namespace {

/// A device's number; one that no device has for what is no number.
int deviceNumber(std::string_view text) {
    RequestTarget target;
    target.parameters.emplace("number", text);
    const auto number = target.number("number", 0);
    constexpr std::uint64_t kMost = 1'000'000'000;
    return number && *number <= kMost ? static_cast<int>(*number) : kOwner;
}

HTTPResponse noSuchDevice() {
    return errorResponse(404, "There is no such device.", "\"devices\" lists them.");
}

} // namespace

HTTPResponse Site::answerForget(const Visit& visit, const HTTPRequest&) {
    const int device = deviceNumber(visit.identifier);
    if (!parts_.devices.forget(device)) {
        return noSuchDevice();
    }
    deviceGone(device);
    return done();
}

HTTPResponse Site::answerReadOnly(const Visit& visit, const HTTPRequest& request) {
    const auto body = objectOf(request.body);
    const auto readOnly = body ? flagAt(*body, "readOnly") : std::nullopt;
    if (!readOnly) {
        return notUnderstood();
    }
    if (!parts_.devices.setReadOnly(deviceNumber(visit.identifier), *readOnly)) {
        return noSuchDevice();
    }
    devicesChanged();
    return done();
}

void Site::openStream(EventStream& stream) {
    streams_.add(stream, parts_.limits.streamsPerDevice);
    parts_.devices.streamsChanged(stream.device(), 1);
    if (streams_.all().size() == 1) {
        parts_.host.followingChanged(true);
    }
    stream.deliver(eventText("hello", json::serialize(helloView(*parts_.map.snapshot(), active_))));
    parts_.host.accessChanged();
}

void Site::closeStream(EventStream& stream) {
    streams_.remove(stream);
    parts_.devices.streamsChanged(stream.device(), -1);
    if (streams_.all().empty()) {
        parts_.host.followingChanged(false);
    }
    parts_.host.accessChanged();
}

void Site::deviceGone(int device) {
    streams_.endAllOf(device);
    devicesChanged();
}

void Site::endStrangersStreams() {
    const auto streams = streams_.all();
    for (EventStream* stream : streams) {
        if (stream->device() != kOwner && !parts_.devices.knows(stream->device())) {
            stream->end();
        }
    }
}

void Site::devicesChanged() {
    parts_.host.accessChanged();
    tellState();
}

void Site::setAccess(AccessStatus access) {
    if (access != access_) {
        access_ = std::move(access);
        tellState();
    }
}

void Site::setState(ProgramState state) {
    if (state != state_) {
        state_ = std::move(state);
        tellState();
    }
}

/// Each device is told whether it may open.
void Site::tellState() {
    for (EventStream* stream : streams_.all()) {
        stream->deliver(eventText("state", stateText(parts_.devices.isReadOnly(stream->device()))));
    }
}

void Site::tell(std::string_view event, const json::object& data) {
    streams_.deliverToAll(eventText(event, json::serialize(data)));
}

/// No shape is about the switches alone: a revision in which no file changed has lists read again.
void Site::setFileTypes(std::vector<FileTypeSwitch> types) {
    if (types == fileTypes_) {
        return;
    }
    fileTypes_ = std::move(types);
    tell("revision", {{"revision", parts_.map.snapshot()->revision()},
                      {"files", json::array()},
                      {"tree", false}});
}

void Site::setActive(ActivePlace active) {
    active_ = std::move(active);
    std::string text = json::serialize(activeView(*parts_.map.snapshot(), active_));
    if (text != toldActive_) {
        toldActive_ = std::move(text);
        streams_.deliverToAll(eventText("active", toldActive_));
    }
}

void Site::mapChanged(const CodeMap::Change& change) {
    if (change.files.size() > kMaximumListedFiles) {
        tell("resync", {});
    } else {
        json::array files;
        for (const NodeID file : change.files) {
            files.push_back(json::string(textOfNodeID(file)));
        }
        tell("revision",
             {{"revision", change.revision}, {"files", std::move(files)}, {"tree", change.tree}});
    }
    tellState(); // counts, and whether the project can be read
    setActive(active_);
}

} // namespace navrel
