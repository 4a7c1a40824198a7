#include "app/TextFetch.h"

#include "support/text/UTF8.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <algorithm>
#include <curl/curl.h>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace navrel {

namespace {

constexpr int kMaximumRedirections = 5;
constexpr long kStatusOK = 200;

using Handle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

bool isHTTP(const QUrl& url) {
    return url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
}

bool hasNoAddressByDefinition(const QUrl& url) {
    const QString host = url.host();
    return host.isEmpty() || host == QStringLiteral("invalid") ||
           host.endsWith(QStringLiteral(".invalid"));
}

/// Keeps what arrives, as far as there is room; else the transfer ends with an error.
size_t keep(char* bytes, size_t, size_t count, void* kept) {
    auto& text = *static_cast<QByteArray*>(kept);
    if (count > static_cast<size_t>(kMaximumFetchedBytes - text.size())) {
        return 0;
    }
    text.append(bytes, static_cast<qsizetype>(count));
    return count;
}

/// Asks for a place, without going where it sends to. False without a whole answer by then.
bool perform(CURL* handle, const QUrl& place, QByteArray& text, const QDeadlineTimer& deadline) {
    text.clear();
    const QByteArray address = place.toEncoded();
    const qint64 atMost = std::max<qint64>(deadline.remainingTime(), 1); // 0 would be no limit
    curl_easy_setopt(handle, CURLOPT_URL, address.constData());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(atMost));
    curl_easy_setopt(handle, CURLOPT_MAXFILESIZE, static_cast<long>(kMaximumFetchedBytes));
    curl_easy_setopt(handle, CURLOPT_PROXY, ""); // whatever the environment names
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &text);
    return curl_easy_perform(handle) == CURLE_OK;
}

std::optional<QByteArray> fetchBytes(const QUrl& url, const QDeadlineTimer& deadline) {
    const Handle handle(curl_easy_init(), &curl_easy_cleanup);
    QByteArray text;
    QUrl place = url;
    // Not followed by curl, which would follow to another host.
    for (int redirections = 0; redirections <= kMaximumRedirections; ++redirections) {
        if (!handle || !perform(handle.get(), place, text, deadline)) {
            return std::nullopt;
        }
        const char* target = nullptr;
        curl_easy_getinfo(handle.get(), CURLINFO_REDIRECT_URL, &target);
        if (target == nullptr) {
            long status = 0;
            curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
            return status == kStatusOK ? std::optional(text) : std::nullopt;
        }
        place = QUrl::fromEncoded(target);
        if (place.host() != url.host() || !isHTTP(place)) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

bool breaksLine(QChar character) {
    return character.isSpace() && character != QChar(u'\t') &&
           (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph);
}

bool turnsDirection(QChar character) {
    return (character >= QChar(u'\u202A') && character <= QChar(u'\u202E')) ||
           (character >= QChar(u'\u2066') && character <= QChar(u'\u2069'));
}

/// A text that can be shown: a server that sends something else has no version to offer.
bool isReadable(const QString& text) {
    return std::count_if(text.begin(), text.end(), breaksLine) <= kMaximumFetchedLineBreaks &&
           std::none_of(text.begin(), text.end(), [](QChar character) {
               return turnsDirection(character) ||
                      (character.category() == QChar::Other_Control && !character.isSpace());
           });
}

} // namespace

std::optional<QString> fetchText(const QUrl& url) {
    if (!isHTTP(url) || hasNoAddressByDefinition(url)) {
        return std::nullopt;
    }
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (started != CURLE_OK) {
        return std::nullopt;
    }
    // On a thread of its own, which is left behind: a resolver may take a minute, and cannot be
    // interrupted. Whatever holds it must not hold the caller.
    const QDeadlineTimer deadline(kTextFetchLimit);
    std::promise<std::optional<QByteArray>> promise;
    auto fetched = promise.get_future();
    std::thread([url, deadline, promise = std::move(promise)]() mutable {
        promise.set_value(fetchBytes(url, deadline));
    }).detach();
    if (fetched.wait_for(kTextFetchLimit) != std::future_status::ready) {
        return std::nullopt;
    }
    const auto bytes = fetched.get();
    if (!bytes) {
        return std::nullopt;
    }
    auto text = decodeUTF8(*bytes);
    return text && isReadable(*text) ? text : std::nullopt;
}

} // namespace navrel
