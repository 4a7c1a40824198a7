#include "app/TextFetch.h"

#include "support/text/UTF8.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QThread>
#include <QTimer>
#include <QVariant>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <netdb.h>
#include <thread>

namespace navrel {

namespace {

constexpr int kMaximumRedirections = 5;
constexpr int kStatusOK = 200;

/// What the worker has, after it gave up, to put everything away before the caller is gone.
constexpr std::chrono::milliseconds kTimeToEnd{100};

/// What the worker leaves for the caller, who may have stopped waiting.
struct Fetched {
    std::optional<QByteArray> bytes;
};

bool isHTTP(const QUrl& url) {
    return url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
}

bool hasNoAddressByDefinition(const QUrl& url) {
    const QString host = url.host();
    return host.isEmpty() || host == QStringLiteral("invalid") ||
           host.endsWith(QStringLiteral(".invalid"));
}

std::optional<QByteArray> bytesOf(QNetworkReply& reply) {
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply.error() != QNetworkReply::NoError || status != kStatusOK) {
        return std::nullopt;
    }
    const QByteArray bytes = reply.read(kMaximumFetchedBytes + 1);
    return bytes.size() > kMaximumFetchedBytes ? std::nullopt : std::optional(bytes);
}

/// Whether a host has an address, as far as can be told by then. The resolver may take a minute
/// over that and cannot be interrupted, so its thread is left behind: Qt's own would hold the end
/// of the program as long. Qt asks once more, of a resolver that answers.
bool hasAddress(const QUrl& url, const QDeadlineTimer& deadline) {
    const auto found = std::make_shared<std::promise<bool>>();
    std::future<bool> answer = found->get_future();
    std::thread([found, host = url.host(QUrl::FullyEncoded).toLatin1()] {
        addrinfo* addresses = nullptr;
        const bool isFound = ::getaddrinfo(host.constData(), nullptr, nullptr, &addresses) == 0;
        if (isFound) {
            ::freeaddrinfo(addresses);
        }
        found->set_value(isFound);
    }).detach();
    return answer.wait_for(deadline.remainingTimeAsDuration()) == std::future_status::ready &&
           answer.get();
}

/// Waits for the whole reply, or what comes of it by then.
std::unique_ptr<QNetworkReply> finishedReply(QNetworkAccessManager& manager, const QUrl& url,
                                             const QDeadlineTimer& deadline) {
    QNetworkRequest request(url);
    // Not followed by Qt: a redirection that is refused would have to be aborted, and what Qt's
    // thread held of it then might never be freed.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    std::unique_ptr<QNetworkReply> reply(manager.get(request));
    reply->setReadBufferSize(kMaximumFetchedBytes + 1);

    QEventLoop loop;
    const auto giveUp = [&reply] { reply->abort(); };
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        if (reply->bytesAvailable() > kMaximumFetchedBytes) {
            giveUp();
        }
    });
    QTimer::singleShot(static_cast<int>(deadline.remainingTime()), Qt::PreciseTimer, &loop, giveUp);
    if (!reply->isFinished()) {
        loop.exec();
    }
    return reply;
}

/// Runs in a thread of its own, with an event loop of its own.
std::optional<QByteArray> fetchBytes(const QUrl& url, const QDeadlineTimer& deadline) {
    if (!hasAddress(url, deadline)) {
        return std::nullopt;
    }
    QNetworkAccessManager manager;
    QUrl place = url;
    for (int redirections = 0; redirections <= kMaximumRedirections; ++redirections) {
        const auto reply = finishedReply(manager, place, deadline);
        const QVariant target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute);
        if (!target.isValid()) {
            return bytesOf(*reply);
        }
        place = place.resolved(target.toUrl());
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

/// A text that a person can be shown: a server that sends something else has no version to offer.
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
    const auto fetched = std::make_shared<Fetched>();
    const QDeadlineTimer deadline(kTextFetchLimit - kTimeToEnd);
    auto* worker =
        QThread::create([url, deadline, fetched] { fetched->bytes = fetchBytes(url, deadline); });
    worker->start();
    if (!worker->wait(deadline + kTimeToEnd.count())) {
        // It ends by itself, soon: whatever holds it must not hold the caller.
        QObject::connect(worker, &QThread::finished, worker, &QObject::deleteLater);
        return std::nullopt;
    }
    delete worker;
    if (!fetched->bytes) {
        return std::nullopt;
    }
    auto text = decodeUTF8(*fetched->bytes);
    return text && isReadable(*text) ? text : std::nullopt;
}

} // namespace navrel
