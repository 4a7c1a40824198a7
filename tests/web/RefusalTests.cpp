#include "tests/web/ServedSite.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace navrel {
namespace {

/// One request, byte by byte, with places for what differs from run to run: {host} is a Host field
/// that is ours, {origin} our page's origin, {cookie} a paired device's cookie.
struct Row {
    const char* what;
    std::string bytes;
    int status;
};

std::string filled(std::string text, const std::string& place, const std::string& with) {
    for (auto at = text.find(place); at != std::string::npos; at = text.find(place, at)) {
        text.replace(at, place.size(), with);
        at += with.size();
    }
    return text;
}

class RefusalTests : public ServedSite {
protected:
    RefusalTests() {
        start();
        cookie_ = pair();
    }

    std::string bytesOf(const Row& row) const {
        std::string bytes = filled(row.bytes, "{host}", hostField());
        bytes = filled(bytes, "{origin}", "http://" + hostField());
        return filled(bytes, "{cookie}", cookie_);
    }

    void expectAll(const std::vector<Row>& rows) const {
        for (const Row& row : rows) {
            WebClient client(port());
            client.send(bytesOf(row));
            const WebAnswer answer = client.answer(!row.bytes.starts_with("HEAD "));
            EXPECT_EQ(answer.status, row.status) << row.what << '\n' << answer.body;
        }
    }

    std::string cookie_;
};

TEST_F(RefusalTests, aHostThatIsNotOursIsMisdirected) {
    expectAll({
        {"ours", "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 200},
        {"ours, at another port of a tunnel",
         "GET /api/state HTTP/1.1\r\nHost: localhost:9000\r\nCookie: {cookie}\r\n\r\n", 200},
        {"a foreign name, as rebinding sends it",
         "GET /api/state HTTP/1.1\r\nHost: attacker.example\r\nCookie: {cookie}\r\n\r\n", 421},
        {"a foreign name at our port", "GET / HTTP/1.1\r\nHost: attacker.example:2346\r\n\r\n",
         421},
        {"ours as the beginning of another",
         "GET / HTTP/1.1\r\nHost: localhost.attacker.example\r\n\r\n", 421},
        {"an address that is not this machine's", "GET / HTTP/1.1\r\nHost: 192.0.2.1:2346\r\n\r\n",
         421},
        {"a port that is no number", "GET / HTTP/1.1\r\nHost: localhost:23x46\r\n\r\n", 421},
        {"no Host", "GET / HTTP/1.1\r\n\r\n", 421},
        {"no Host, as HTTP/1.0 allows", "GET / HTTP/1.0\r\n\r\n", 421},
        {"two Hosts", "GET / HTTP/1.1\r\nHost: {host}\r\nHost: attacker.example\r\n\r\n", 421},
        {"an empty one", "GET / HTTP/1.1\r\nHost:\r\n\r\n", 421},
    });
}

TEST_F(RefusalTests, withoutACookieOfOursNothingIsSaid) {
    const std::string instance = cookie_.substr(0, cookie_.find('='));
    expectAll({
        {"no cookie", "GET /api/state HTTP/1.1\r\nHost: {host}\r\n\r\n", 401},
        {"another's value",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: " + instance +
             "=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA\r\n\r\n",
         401},
        {"an empty value",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: " + instance + "=\r\n\r\n", 401},
        {"another instance's",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: navrel-00000000=" +
             cookie_.substr(cookie_.find('=') + 1) + "\r\n\r\n",
         401},
        {"the right one behind others",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: a=b; {cookie}\r\n\r\n", 200},
        {"a route that is not there", "GET /api/passwords HTTP/1.1\r\nHost: {host}\r\n\r\n", 401},
        {"an owner's route", "GET /api/devices HTTP/1.1\r\nHost: {host}\r\n\r\n", 401},
    });
}

TEST_F(RefusalTests, changesComeFromOurOwnPageAlone) {
    const std::string rest = "Cookie: {cookie}\r\nContent-Type: application/json\r\n"
                             "Content-Length: 2\r\n\r\n{}";
    const std::string start = "POST /api/back HTTP/1.1\r\nHost: {host}\r\n";
    expectAll({
        {"ours", start + "Origin: {origin}\r\nX-Navrel: 1\r\n" + rest, 202},
        {"no Origin", start + "X-Navrel: 1\r\n" + rest, 403},
        {"a foreign Origin", start + "Origin: http://attacker.example\r\nX-Navrel: 1\r\n" + rest,
         403},
        {"an opaque Origin", start + "Origin: null\r\nX-Navrel: 1\r\n" + rest, 403},
        {"another port of this machine",
         start + "Origin: http://127.0.0.1:3000\r\nX-Navrel: 1\r\n" + rest, 403},
        {"another scheme", start + "Origin: https://{host}\r\nX-Navrel: 1\r\n" + rest, 403},
        {"ours as the beginning of another",
         start + "Origin: {origin}.attacker.example\r\nX-Navrel: 1\r\n" + rest, 403},
        {"without our field", start + "Origin: {origin}\r\n" + rest, 403},
        {"with another value of it", start + "Origin: {origin}\r\nX-Navrel: 2\r\n" + rest, 403},
        {"pairing, from a foreign page",
         "POST /api/pair HTTP/1.1\r\nHost: {host}\r\nOrigin: http://attacker.example\r\n"
         "X-Navrel: 1\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}",
         403},
    });
    EXPECT_EQ(host.asked(), (std::vector<std::string>{"paired iPad, Safari", "back"}));
}

TEST_F(RefusalTests, bodiesAreJSON) {
    const std::string start = "POST /api/open HTTP/1.1\r\nHost: {host}\r\nOrigin: {origin}\r\n"
                              "X-Navrel: 1\r\nCookie: {cookie}\r\n";
    expectAll({
        {"a form's", start + "Content-Type: text/plain\r\nContent-Length: 2\r\n\r\n{}", 415},
        {"without a type", start + "Content-Length: 2\r\n\r\n{}", 415},
        {"a type that begins alike",
         start + "Content-Type: application/json5\r\nContent-Length: 2\r\n\r\n{}", 415},
        {"with a character set, of another shape",
         start + "Content-Type: application/json; charset=utf-8\r\nContent-Length: 2\r\n\r\n{}",
         400},
        {"what is no JSON", start + "Content-Type: application/json\r\nContent-Length: 2\r\n\r\n{,",
         400},
        {"nested deeply",
         start + "Content-Type: application/json\r\nContent-Length: 10\r\n\r\n[[[[[[[[[[", 400},
        {"a path in place of an identifier",
         start + "Content-Type: application/json\r\nContent-Length: 22\r\n\r\n"
                 "{\"file\":\"/etc/passwd\"}",
         404},
        {"a line that is none",
         start + "Content-Type: application/json\r\nContent-Length: 41\r\n\r\n"
                 "{\"file\":\"0000000000000002\",\"line\":\"three\"}",
         400},
        {"a line below 0",
         start + "Content-Type: application/json\r\nContent-Length: 36\r\n\r\n"
                 "{\"file\":\"0000000000000002\",\"line\":-1}",
         400},
    });
}

TEST_F(RefusalTests, transferEncodingsAreNotTaken) {
    const std::string start = "POST /api/back HTTP/1.1\r\nHost: {host}\r\nOrigin: {origin}\r\n"
                              "X-Navrel: 1\r\nCookie: {cookie}\r\n"
                              "Content-Type: application/json\r\n";
    expectAll({
        {"chunked", start + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n", 501},
        {"another", start + "Transfer-Encoding: gzip\r\n\r\n", 501},
        {"in a GET", "GET / HTTP/1.1\r\nHost: {host}\r\nTransfer-Encoding: chunked\r\n\r\n", 501},
    });
}

TEST_F(RefusalTests, headsAreBounded) {
    const std::string start = "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n";
    std::string manyFields = start;
    for (int field = 3; field <= 64; ++field) {
        manyFields += "X-Field: 1\r\n";
    }
    const std::string filler(8 * 1024, 'x');
    expectAll({
        {"64 fields", manyFields + "\r\n", 200},
        {"65 fields", manyFields + "X-Field: 1\r\n\r\n", 431},
        {"over 8 KiB", start + "X-Filler: " + filler + "\r\n\r\n", 431},
        {"over 8 KiB, and without an end", start + "X-Filler: " + filler, 431},
        {"a target over 8 KiB", "GET /" + filler + " HTTP/1.1\r\n", 431},
    });
    // Exactly 8 KiB is taken, one byte more is not.
    const std::string head = bytesOf({"", start + "X-Filler: ", 0});
    const std::size_t room = 8 * 1024 - head.size() - 4;
    EXPECT_EQ(WebClient(port()).ask(head + std::string(room, 'x') + "\r\n\r\n").status, 200);
    EXPECT_EQ(WebClient(port()).ask(head + std::string(room + 1, 'x') + "\r\n\r\n").status, 431);
}

TEST_F(RefusalTests, bodiesAreBounded) {
    const std::string start = "POST /api/pair HTTP/1.1\r\nHost: {host}\r\nOrigin: {origin}\r\n"
                              "X-Navrel: 1\r\nContent-Type: application/json\r\n";
    const auto bodyOf = [](std::size_t size) {
        return "Content-Length: " + std::to_string(size) + "\r\n\r\n" + std::string(size, ' ');
    };
    expectAll({
        {"16 KiB of blanks", start + bodyOf(16 * 1024), 400},
        {"a byte more", start + bodyOf(16 * 1024 + 1), 413},
        {"an announced gigabyte", start + "Content-Length: 1073741824\r\n\r\n", 413},
        {"a length that is none", start + "Content-Length: many\r\n\r\n", 400},
        {"a length below 0", start + "Content-Length: -1\r\n\r\n", 400},
        {"two lengths", start + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", 400},
    });
}

TEST_F(RefusalTests, whatIsNoRequestIsRefused) {
    expectAll({
        {"an absolute target", "GET http://attacker.example/ HTTP/1.1\r\nHost: {host}\r\n\r\n",
         400},
        {"a proxy's request", "CONNECT attacker.example:443 HTTP/1.1\r\nHost: {host}\r\n\r\n", 400},
        {"an asterisk", "OPTIONS * HTTP/1.1\r\nHost: {host}\r\n\r\n", 400},
        {"another version", "GET / HTTP/2.0\r\nHost: {host}\r\n\r\n", 505},
        {"the next version's greeting", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505},
        {"no version", "GET /\r\n\r\n", 400},
        {"no HTTP at all", "\r\n\r\n", 400},
        {"a NUL in a field", std::string("GET / HTTP/1.1\r\nHost: a\0b\r\n\r\n", 30), 400},
        {"half an escape",
         "GET /api/search?q=%f HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 400},
        {"an escape that is no UTF-8",
         "GET /api/search?q=%ff HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 400},
        {"a number that is none",
         "GET /api/search?q=a&limit=x HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 400},
    });
}

TEST_F(RefusalTests, routesTakeIdentifiersAndNoPaths) {
    const auto getting = [](const std::string& target) {
        return "GET " + target + " HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n";
    };
    expectAll({
        {"upwards", getting("/api/files/../../etc/passwd/source"), 404},
        {"upwards, escaped", getting("/api/files/..%2f..%2fetc%2fpasswd/source"), 404},
        {"an identifier of nothing", getting("/api/files/00000000000000ff/source"), 404},
        {"the root, which is no file", getting("/api/files/0000000000000001/source"), 404},
        {"digits in upper case", getting("/api/files/000000000000000A/outline"), 404},
        {"too few digits", getting("/api/files/2/outline"), 404},
        {"a file that is no longer on disk", getting("/api/files/0000000000000004/source"), 404},
        {"an asset upwards", getting("/../etc/passwd"), 404},
        {"an unknown route", getting("/api/passwords"), 404},
        {"an owner's route", getting("/api/devices"), 404},
        {"another method",
         "DELETE /api/state HTTP/1.1\r\nHost: {host}\r\nOrigin: {origin}\r\nX-Navrel: 1\r\n"
         "Cookie: {cookie}\r\n\r\n",
         405},
        {"the head of a stream, which has no end",
         "HEAD /api/events HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 405},
        {"changing the page", "POST / HTTP/1.1\r\nHost: {host}\r\nContent-Length: 0\r\n\r\n", 405},
    });
}

TEST_F(RefusalTests, anotherMethodIsToldTheAllowedOnes) {
    struct Refused {
        const char* line;
        const char* allowed;
    };
    for (const auto& [line, allowed] : std::vector<Refused>{
             {"POST / HTTP/1.1", "GET, HEAD"},
             {"DELETE /api/state HTTP/1.1", "GET, HEAD"},
             {"GET /api/open HTTP/1.1", "POST"},
             {"HEAD /api/events HTTP/1.1", "GET"},
             {"PATCH /api/filetypes HTTP/1.1", "GET, HEAD, POST"},
         }) {
        WebClient client(port());
        client.send(
            bytesOf({"",
                     std::string(line) + "\r\nHost: {host}\r\nOrigin: {origin}\r\nX-Navrel: 1\r\n"
                                         "Cookie: {cookie}\r\n\r\n",
                     0}));
        const std::string head = client.readUntil("\r\n\r\n");
        EXPECT_THAT(head, ::testing::StartsWith("HTTP/1.1 405 ")) << line;
        EXPECT_THAT(head, ::testing::HasSubstr(std::string("\r\nAllow: ") + allowed + "\r\n"))
            << line;
    }
}

TEST_F(RefusalTests, everyRouteIsClosedToStrangers) {
    const std::string forgotten = pair("old phone");
    service_->forget(service_->devices().back().number);
    const std::string anothers = "navrel-00000000=" + cookie_.substr(cookie_.find('=') + 1);
    for (const std::string& route : everyRoute()) {
        const std::string line = route + " HTTP/1.1\r\n";
        const std::string start = line + "Host: {host}\r\nOrigin: {origin}\r\nX-Navrel: 1\r\n";
        expectAll({
            {route.c_str(), start + "\r\n", 401},
            {route.c_str(), start + "Cookie: " + forgotten + "\r\n\r\n", 401},
            {route.c_str(), start + "Cookie: " + anothers + "\r\n\r\n", 401},
            {route.c_str(), line + "Host: attacker.example\r\nCookie: {cookie}\r\n\r\n", 421},
        });
    }
    EXPECT_EQ(host.asked(), (std::vector<std::string>{"paired iPad, Safari", "paired old phone"}));
}

TEST_F(RefusalTests, noRouteAnswersAPageOfAnotherOrigin) {
    for (const std::string& route : everyRoute()) {
        const bool isChange = !route.starts_with("GET");
        WebClient client(port());
        client.send(bytesOf({"",
                             route + " HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n"
                                     "Origin: http://attacker.example\r\nX-Navrel: 1\r\n\r\n",
                             0}));
        // What is asked for may be sent, but the browser gives it to no page of another origin.
        const std::string head = client.readUntil("\r\n\r\n");
        EXPECT_EQ(head.starts_with("HTTP/1.1 403 "), isChange) << route << '\n' << head;
        EXPECT_THAT(head, ::testing::HasSubstr("Cross-Origin-Resource-Policy: same-origin\r\n"));
        EXPECT_THAT(head, ::testing::Not(::testing::HasSubstr("Access-Control-"))) << route;
    }
    EXPECT_EQ(host.asked(), std::vector<std::string>{"paired iPad, Safari"});
}

TEST_F(RefusalTests, answersSayWhatAPageMayDo) {
    const WebAnswer answer = get("/api/state", cookie_);
    using ::testing::Contains;
    using ::testing::Key;
    using ::testing::Not;
    using ::testing::Pair;
    EXPECT_THAT(answer.fields,
                Contains(Pair("content-security-policy",
                              "default-src 'none'; script-src 'self'; style-src 'self'; "
                              "img-src 'self' data:; connect-src 'self'; manifest-src 'self'; "
                              "frame-ancestors 'none'; base-uri 'none'; form-action 'none'")));
    EXPECT_THAT(answer.fields, Contains(Pair("x-content-type-options", "nosniff")));
    EXPECT_THAT(answer.fields, Contains(Pair("referrer-policy", "no-referrer")));
    EXPECT_THAT(answer.fields, Contains(Pair("cross-origin-resource-policy", "same-origin")));
    EXPECT_THAT(answer.fields, Contains(Pair("cache-control", "no-store")));
    EXPECT_THAT(answer.fields, Not(Contains(Key("access-control-allow-origin"))));
    EXPECT_THAT(answer.fields, Not(Contains(Key("server"))));
}

TEST_F(RefusalTests, requestsOfOneConnectionFollowEachOther) {
    WebClient client(port());
    client.send(getBytes("/api/state", cookie_) + getBytes("/api/filetypes", cookie_));
    EXPECT_EQ(valueAt(client.answer().body, "program"), "Navrel");
    EXPECT_EQ(client.answer().body.substr(0, 8), "{\"items\"");
    EXPECT_EQ(client.ask(getBytes("/api/nothing", cookie_)).status, 404);
    EXPECT_EQ(client.ask(getBytes("/api/state", cookie_)).status, 200);
    client.send("HEAD /api/state HTTP/1.1\r\nHost: " + hostField() + "\r\nCookie: " + cookie_ +
                "\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(client.answer(false).status, 200);
    EXPECT_EQ(client.readToEnd(), "");
}

/// What stands behind a request is taken for another one only where the first one's end is certain.
TEST_F(RefusalTests, aRequestWithoutACertainEndIsTheLast) {
    const std::string post = "POST /api/back HTTP/1.1\r\nHost: {host}\r\nOrigin: {origin}\r\n"
                             "X-Navrel: 1\r\nCookie: {cookie}\r\n"
                             "Content-Type: application/json\r\n";
    const std::string hidden =
        "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n";
    const std::vector<Row> rows = {
        {"a length and chunks",
         post + "Content-Length: 4\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 501},
        {"chunks and a length",
         post + "Transfer-Encoding: chunked\r\nContent-Length: 4\r\n\r\n0\r\n\r\n", 400},
        {"an encoding that is almost one", post + "Transfer-Encoding: xchunked\r\n\r\n", 501},
        {"an encoding that does nothing", post + "Transfer-Encoding: identity\r\n\r\n", 501},
        {"an encoding behind a tab", post + "Transfer-Encoding:\tchunked\r\n\r\n0\r\n\r\n", 501},
        {"an encoding on the next line", post + "Transfer-Encoding:\r\n chunked\r\n\r\n0\r\n\r\n",
         501},
        {"an encoding in a GET",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nTransfer-Encoding: gzip\r\n\r\n", 501},
        {"an encoding to a stranger's host",
         "GET / HTTP/1.1\r\nHost: attacker.example\r\nTransfer-Encoding: gzip\r\n\r\n", 501},
        {"a blank before the colon", post + "Transfer-Encoding : chunked\r\n\r\n0\r\n\r\n", 400},
        {"a length with a sign", post + "Content-Length: +2\r\n\r\n{}", 400},
        {"a hexadecimal length", post + "Content-Length: 0x2\r\n\r\n{}", 400},
        {"two lengths", post + "Content-Length: 2\r\nContent-Length: 0\r\n\r\n{}", 400},
        {"a length that overflows", post + "Content-Length: 18446744073709551618\r\n\r\n{}", 400},
        {"a line feed alone", "GET / HTTP/1.1\r\nHost: {host}\nX-Navrel: 1\r\n\r\n", 400},
        {"a carriage return alone", "GET / HTTP/1.1\r\nHost: {host}\r\nX-A: a\rb\r\n\r\n", 400},
        {"a field without a name", "GET / HTTP/1.1\r\nHost: {host}\r\n: a\r\n\r\n", 400},
    };
    for (const Row& row : rows) {
        WebClient client(port());
        EXPECT_EQ(client.ask(bytesOf({"", row.bytes + hidden, 0})).status, row.status) << row.what;
        EXPECT_EQ(client.readToEnd(), "") << row.what;
    }
    EXPECT_EQ(host.asked(), std::vector<std::string>{"paired iPad, Safari"});
}

TEST_F(RefusalTests, otherSpellingsOfOurNamesAreNotOurs) {
    const auto toHost = [](const std::string& name) {
        return "GET / HTTP/1.1\r\nHost: " + name + "\r\n\r\n";
    };
    const auto asking = [](const std::string& target) {
        return "GET " + target + " HTTP/1.1\r\nHost: {host}\r\n\r\n";
    };
    std::string manyHosts = "GET / HTTP/1.1\r\n";
    for (int count = 0; count < 60; ++count) {
        manyHosts += "Host: {host}\r\n";
    }
    expectAll({
        {"in capitals, as names may be",
         "GET /api/state HTTP/1.1\r\nHost: LOCALHOST:1\r\nCookie: {cookie}\r\n\r\n", 200},
        {"a user before it", toHost("attacker.example@localhost"), 421},
        {"a user behind it", toHost("localhost@attacker.example"), 421},
        {"a dot behind it", toHost("localhost."), 421},
        {"two names", toHost("localhost, attacker.example"), 421},
        {"a name on the next line", toHost("localhost\r\n attacker.example"), 421},
        {"a port alone", toHost(":2346"), 421},
        {"an address as one number", toHost("2130706433"), 421},
        {"the address of all", toHost("0.0.0.0"), 421},
        {"an interface", toHost("[::1%25lo]"), 421},
        {"sixty of them", manyHosts + "\r\n", 421},
        {"what a proxy may say",
         toHost("attacker.example\r\nX-Forwarded-Host: localhost\r\nForwarded: host=localhost"),
         421},
        {"ours as a whole address", asking("http://{host}/api/state"), 400},
        {"an escaped letter", asking("/%61pi/state"), 404},
        {"an escaped slash", asking("/api%2fstate"), 404},
        {"two slashes", asking("//api/state"), 404},
        {"a dot", asking("/./api/state"), 404},
        {"two dots", asking("/x/../api/state"), 404},
        {"a backslash", asking("/api\\state"), 404},
        {"in capitals", asking("/API/state"), 404},
    });
}

TEST_F(RefusalTests, whatIsNotSpokenIsPassedOver) {
    const std::string getting = " HTTP/1.1\r\nHost: {host}\r\nCookie: {cookie}\r\n";
    const std::string instance = cookie_.substr(0, cookie_.find('='));
    std::string cookies;
    while (cookies.size() < 7000) {
        cookies += "name=value; ";
    }
    expectAll({
        {"a part of an answer", "GET /api/tree" + getting + "Range: bytes=0-1\r\n\r\n", 200},
        {"another protocol",
         "GET /api/state" + getting + "Connection: Upgrade\r\nUpgrade: h2c\r\n\r\n", 200},
        {"another method in a field",
         "GET /api/back" + getting + "X-HTTP-Method-Override: POST\r\n\r\n", 405},
        {"an echo", "TRACE /api/state" + getting + "\r\n", 403},
        {"a foreign page's leave to ask",
         "OPTIONS /api/open" + getting +
             "Origin: http://attacker.example\r\n"
             "Access-Control-Request-Method: POST\r\n\r\n",
         403},
        {"HTTP/1.0", "GET /api/state HTTP/1.0\r\nHost: {host}\r\nCookie: {cookie}\r\n\r\n", 200},
        {"7 kB of cookies",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: " + cookies + "{cookie}\r\n\r\n", 200},
        {"a cookie that stands before ours",
         "GET /api/state HTTP/1.1\r\nHost: {host}\r\nCookie: " + instance + "=x; {cookie}\r\n\r\n",
         401},
        {"a parameter a thousand times",
         "GET /api/search?" + filled(std::string(1000, '&'), "&", "q=a%26") + getting + "\r\n",
         200},
        {"a line beyond all lines",
         "GET /api/files/0000000000000003/source?from=18446744073709551615" + getting + "\r\n",
         200},
        {"a compressed body",
         "POST /api/open" + getting +
             "Origin: {origin}\r\nX-Navrel: 1\r\n"
             "Content-Type: application/json\r\nContent-Encoding: gzip\r\nContent-Length: 4\r\n\r\n"
             "\x1f\x8b\x08\x01",
         400},
        {"a number of a thousand digits",
         "POST /api/open" + getting +
             "Origin: {origin}\r\nX-Navrel: 1\r\n"
             "Content-Type: application/json\r\nContent-Length: 1034\r\n\r\n"
             "{\"file\":\"0000000000000002\",\"line\":" +
             std::string(1000, '9') + "}",
         400},
    });
}

} // namespace
} // namespace navrel
