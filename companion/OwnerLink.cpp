#include "companion/OwnerLink.h"

#include <cstdlib>
#include <curl/curl.h>
#include <memory>

namespace navrel {

namespace {

/// Answers come from memory; only a look at a repository takes longer.
constexpr long kAnswerSeconds = 30;

struct FreeHandle {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using Handle = std::unique_ptr<CURL, FreeHandle>;

Handle handleFor(const std::string& socketPath, const std::string& target) {
    Handle handle(curl_easy_init());
    const std::string url = "http://localhost" + target;
    curl_easy_setopt(handle.get(), CURLOPT_UNIX_SOCKET_PATH, socketPath.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_PROTOCOLS_STR, "http");
    curl_easy_setopt(handle.get(), CURLOPT_PROXY, ""); // whatever the environment says
    curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT, kAnswerSeconds);
    curl_easy_setopt(handle.get(), CURLOPT_NOSIGNAL, 1L);
    return handle;
}

std::size_t appendTo(char* bytes, std::size_t, std::size_t size, void* text) {
    static_cast<std::string*>(text)->append(bytes, size);
    return size;
}

std::size_t giveTo(char* bytes, std::size_t, std::size_t size, void* reader) {
    return static_cast<EventReader*>(reader)->receive({bytes, size}) ? size : 0;
}

} // namespace

std::string ownerSocketPath() {
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    return folder == nullptr || *folder == '\0' ? std::string()
                                                : std::string(folder) + "/nl.kelvane.Navrel.sock";
}

std::optional<OwnerLink::Answer> OwnerLink::ask(const std::string& method,
                                                const std::string& target,
                                                const std::string& body) const {
    const Handle handle = handleFor(socketPath_, target);
    const std::unique_ptr<curl_slist, FreeList> fields(
        curl_slist_append(nullptr, "Content-Type: application/json"));
    Answer answer;
    curl_easy_setopt(handle.get(), CURLOPT_CUSTOMREQUEST, method.c_str());
    if (!body.empty()) {
        curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, fields.get());
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
        curl_easy_setopt(handle.get(), CURLOPT_COPYPOSTFIELDS, body.c_str());
    }
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, &appendTo);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &answer.body);
    if (curl_easy_perform(handle.get()) != CURLE_OK) {
        return std::nullopt;
    }
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    return answer;
}

bool OwnerLink::readEvents(const EventReader::Take& take) const {
    const Handle handle = handleFor(socketPath_, "/api/events");
    EventReader reader(take);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, &giveTo);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &reader);
    // The reader ends the transfer by taking less than there is.
    return curl_easy_perform(handle.get()) == CURLE_WRITE_ERROR;
}

bool EventReader::receive(std::string_view bytes) {
    unread_.append(bytes);
    for (;;) {
        const auto end = unread_.find("\n\n");
        if (end == std::string::npos) {
            return true;
        }
        const std::string event = unread_.substr(0, end + 1);
        unread_.erase(0, end + 2);
        if (!takeEvent(event)) {
            return false;
        }
    }
}

bool EventReader::takeEvent(std::string_view lines) const {
    std::string_view name;
    std::string_view data;
    while (!lines.empty()) {
        constexpr std::string_view kName = "event: ";
        constexpr std::string_view kData = "data: ";
        const auto end = lines.find('\n');
        const std::string_view line = lines.substr(0, end);
        lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
        if (line.starts_with(kName)) {
            name = line.substr(kName.size());
        } else if (line.starts_with(kData)) {
            data = line.substr(kData.size());
        }
    }
    return name.empty() || take_(name, data); // what has no name is a heartbeat
}

} // namespace navrel
