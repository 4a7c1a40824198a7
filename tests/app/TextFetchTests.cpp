#include "app/TextFetch.h"
#include "tests/TestWebServer.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace navrel {
namespace {

std::optional<QString> fetchFrom(const TestWebServer::Answer& answer) {
    const TestWebServer server(answer);
    return fetchText(server.url("/version.txt"));
}

TEST(TextFetch, theTextComesExactlyAsItIs) {
    EXPECT_EQ(fetchFrom(TestWebServer::text("1.4.2")), QStringLiteral("1.4.2"));
    EXPECT_EQ(fetchFrom(TestWebServer::text("1.4.2\n")), QStringLiteral("1.4.2\n"));
    EXPECT_EQ(fetchFrom(TestWebServer::text("\r\n\t 2 \r\n")), QStringLiteral("\r\n\t 2 \r\n"));
    EXPECT_EQ(fetchFrom(TestWebServer::text("2.0 bêta 🎉")), QStringLiteral("2.0 bêta 🎉"));
    EXPECT_EQ(fetchFrom(TestWebServer::text("\xEF\xBB\xBF"
                                            "2")),
              QStringLiteral("\uFEFF2"));
    EXPECT_EQ(fetchFrom(TestWebServer::text("")), QString());
}

TEST(TextFetch, aStatusOtherThanOKHasNoText) {
    for (const char* status : {"404 Not Found", "500 Internal Server Error", "403 Forbidden",
                               "204 No Content", "203 Non-Authoritative Information"}) {
        EXPECT_EQ(fetchFrom(TestWebServer::text("9.9.9", status)), std::nullopt) << status;
    }
}

TEST(TextFetch, whatIsNotUTF8IsNoText) {
    EXPECT_EQ(fetchFrom(TestWebServer::text("1.4\xFF")), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::text("\xC0\xAF")), std::nullopt);
}

TEST(TextFetch, binaryThatHappensToBeUTF8IsNoText) {
    EXPECT_EQ(fetchFrom(TestWebServer::text(QByteArray("1.4\0", 4))), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::text("\x1B[31m2.0")), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::text("\xC2\x85\xC2\x9B")), std::nullopt);
}

TEST(TextFetch, aTextThatNoAlertCouldShowIsNone) {
    const QByteArray breaks(kMaximumFetchedLineBreaks, '\n');
    EXPECT_EQ(fetchFrom(TestWebServer::text("2.0" + breaks)),
              QStringLiteral("2.0") + QString(kMaximumFetchedLineBreaks, u'\n'));
    EXPECT_EQ(fetchFrom(TestWebServer::text("2.0" + breaks + "\xE2\x80\xA8")), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::text(QByteArray("9\n").repeated(500))), std::nullopt);
    for (const char* turned : {"\xE2\x80\xAE"
                               "2.0",
                               "2.0\xE2\x81\xA6"}) {
        EXPECT_EQ(fetchFrom(TestWebServer::text(turned)), std::nullopt);
    }
}

TEST(TextFetch, theLongestTextIsTakenAndOneByteMoreIsNot) {
    const QByteArray longest(kMaximumFetchedBytes, '7');
    EXPECT_EQ(fetchFrom(TestWebServer::text(longest)), QString::fromLatin1(longest));
    EXPECT_EQ(fetchFrom(TestWebServer::text(longest + '7')), std::nullopt);
}

TEST(TextFetch, aHundredMegabytesAreLeftWhereTheyAre) {
    std::atomic<qint64> sent = 0;
    constexpr qint64 announced = 100'000'000;
    const auto answer = [&sent](int connection, const TestWebServer&) {
        const QByteArray block(1 << 16, '1');
        bool isOpen =
            TestWebServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Length: 100000000\r\n\r\n");
        while (isOpen && sent < announced) {
            isOpen = TestWebServer::send(connection, block);
            sent += block.size();
        }
    };
    EXPECT_EQ(fetchFrom(answer), std::nullopt);
    EXPECT_LT(sent, announced / 2);
}

TEST(TextFetch, aServerThatStallsIsGivenUpAtTheLimit) {
    const TestWebServer::Answer stallsInTheBody = [](int connection, const TestWebServer& server) {
        TestWebServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1.");
        TestWebServer::stall()(connection, server);
    };
    for (const auto& answer : {TestWebServer::Answer(TestWebServer::stall()), stallsInTheBody}) {
        const TestWebServer server(answer);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(fetchText(server.url("/version.txt")), std::nullopt);
        EXPECT_GE(std::chrono::milliseconds(timer.elapsed()),
                  kTextFetchLimit - std::chrono::milliseconds(200));
    }
}

TEST(TextFetch, anEndlessTrickleIsGivenUpAtTheLimit) {
    const auto trickle = [](int connection, const TestWebServer& server) {
        TestWebServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n");
        while (!server.isEnding() && TestWebServer::send(connection, "1")) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    };
    EXPECT_EQ(fetchFrom(trickle), std::nullopt);
}

TEST(TextFetch, aRedirectionOnTheSameHostIsFollowed) {
    const TestWebServer target(TestWebServer::text("2.0"));
    EXPECT_EQ(fetchFrom(TestWebServer::redirection(target.url("/moved").toEncoded())),
              QStringLiteral("2.0"));
    EXPECT_EQ(target.requests(), std::vector<std::string>{"GET /moved HTTP/1.1"});
}

TEST(TextFetch, aRedirectionToAnotherHostIsNot) {
    const TestWebServer target(TestWebServer::text("2.0"));
    QUrl elsewhere = target.url("/login");
    elsewhere.setHost(QStringLiteral("localhost"));
    EXPECT_EQ(fetchFrom(TestWebServer::redirection(elsewhere.toEncoded())), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::redirection("file:///etc/hostname")), std::nullopt);
    EXPECT_TRUE(target.requests().empty());
}

TEST(TextFetch, redirectionsInACircleEnd) {
    QByteArray itself;
    const TestWebServer server([&itself](int connection, const TestWebServer& s) {
        TestWebServer::redirection(itself)(connection, s);
    });
    itself = server.url("/again").toEncoded();
    EXPECT_EQ(fetchText(server.url("/version.txt")), std::nullopt);
    EXPECT_LE(server.requests().size(), 64U);
}

TEST(TextFetch, garbageInPlaceOfAnAnswerIsNoText) {
    EXPECT_EQ(fetchFrom(TestWebServer::raw("9.9.9\r\n\r\n")), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::raw(QByteArray(100'000, '\xAA'))), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::raw(QByteArray())), std::nullopt);
    EXPECT_EQ(fetchFrom(TestWebServer::raw("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1.")),
              std::nullopt);
}

TEST(TextFetch, whereNobodyListensThereIsNoText) {
    QUrl url;
    {
        const TestWebServer server(TestWebServer::text("1"));
        url = server.url("/version.txt");
    }
    EXPECT_EQ(fetchText(url), std::nullopt);
}

TEST(TextFetch, anAddressThatIsNoneIsNotAsked) {
    for (const char* address : {"http://navrel.invalid/v", "http://invalid/v", "http:///v", "",
                                "file:///etc/hostname", "ftp://127.0.0.1/v", "nonsense"}) {
        EXPECT_EQ(fetchText(QUrl(QString::fromLatin1(address))), std::nullopt) << address;
    }
}

} // namespace
} // namespace navrel
