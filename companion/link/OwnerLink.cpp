#include "companion/link/OwnerLink.h"

#include <algorithm>
#include <cstdlib>
#include <curl/curl.h>
#include <memory>

namespace navrel {

namespace {

/// Answers come from memory; only a look at a repository takes longer.
constexpr long kAnswerSeconds = 30;

constexpr std::chrono::milliseconds kLongestSleep = std::chrono::minutes(10);

struct FreeHandle {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct FreeTransfers {
    void operator()(CURLM* transfers) const { curl_multi_cleanup(transfers); }
};
using Handle = std::unique_ptr<CURL, FreeHandle>;
using Transfers = std::unique_ptr<CURLM, FreeTransfers>;

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

/// How the transfer ended, if it has.
std::optional<OwnerLink::End> endOf(CURLM* transfers) {
    int left = 0;
    while (const CURLMsg* const message = curl_multi_info_read(transfers, &left)) {
        // The reader ends the transfer by taking less than there is.
        return message->data.result == CURLE_WRITE_ERROR ? OwnerLink::End::taken
                                                         : OwnerLink::End::lost;
    }
    return std::nullopt;
}

OwnerLink::End transfer(CURLM* transfers, std::optional<std::chrono::milliseconds> atMost,
                        int stopDescriptor) {
    using Steady = std::chrono::steady_clock;
    const auto started = Steady::now();
    for (;;) {
        int running = 0;
        curl_multi_perform(transfers, &running);
        if (const auto end = endOf(transfers)) {
            return *end;
        }
        const auto left =
            atMost ? *atMost - std::chrono::ceil<std::chrono::milliseconds>(Steady::now() - started)
                   : kLongestSleep;
        if (left <= std::chrono::milliseconds(0)) {
            return OwnerLink::End::timeIsOver;
        }
        curl_waitfd stop = {stopDescriptor, CURL_WAIT_POLLIN, 0};
        curl_multi_poll(transfers, &stop, stopDescriptor < 0 ? 0 : 1,
                        static_cast<int>(std::min(left, kLongestSleep).count()), nullptr);
        if (stop.revents != 0) {
            return OwnerLink::End::stopped;
        }
    }
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

OwnerLink::End OwnerLink::readEvents(const EventReader::Take& take,
                                     std::optional<std::chrono::milliseconds> atMost,
                                     int stopDescriptor) const {
    const Handle handle = handleFor(socketPath_, "/api/events");
    EventReader reader(take);
    curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT, 0L);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, &giveTo);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &reader);
    const Transfers transfers(curl_multi_init());
    curl_multi_add_handle(transfers.get(), handle.get());
    const auto end = transfer(transfers.get(), atMost, stopDescriptor);
    curl_multi_remove_handle(transfers.get(), handle.get());
    return end;
}

} // namespace navrel
