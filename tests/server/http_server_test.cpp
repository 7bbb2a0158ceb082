#include "http_server.h"
#include "raw_http_client.h"
#include "server_fixtures.h"
#include "sync_texts.h"

#include <QScopeGuard>

#include <thread>

using namespace velino;
using namespace velino::server;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kCap = 64 * 1024;

using HttpServerTest = ServiceFixture;

// Refused in French, nothing stored; `closes`: 1 the connection is closed, 2 only after the
// second without progress; `policy`: the page's headers, also on the socket layer's refusals.
TEST_F(HttpServerTest, HostileRequestsAreRefusedAndStoreNothing) {
    config.maxBodyBytes = kCap;
    config.log = [](const std::string &) {}; // the fixture's log is not for several threads
    remake();
    HttpServer server(*service, HttpServerOptions{"127.0.0.1", 0, {}, {}, true, 1s, 8, 1s});
    QString error;
    ASSERT_TRUE(server.bind(&error)) << error.toStdString();
    const std::jthread runner([&] { server.run(); });
    const auto stopped = qScopeGuard([&] { server.stop(); }); // before the runner is joined
    const QString tooLarge = QString::fromUtf8(texts::kBodyTooLarge).arg(kCap);
    const QString malformed = QString::fromUtf8(texts::kMalformedRequest);
    const std::string chunk = "8000\r\n" + std::string(0x8000, ' ') + "\r\n";
    const std::string form = "state=%7B%22activePreset%22%3A%22rdv%22%7D";
    const std::string preview = "POST /api/velino-preview HTTP/1.1\r\nHost: 127.0.0.1\r\n"
                                "Content-Type: application/x-www-form-urlencoded\r\n" +
                                contentLength(form.size()) + "\r\n" + form;
    const std::string chunked = putHead("Transfer-Encoding: chunked\r\n") + chunk + chunk + chunk;
    const std::string bigExpect = putHead("Expect: 100-continue\r\n" + contentLength(kCap + 1));
    const std::string shortBody = putHead(contentLength(uploadBody().size() + 100)) + uploadBody();
    const QString incomplete = QString::fromUtf8(texts::kIncompleteBody);
    const char *page = "default-src 'none'";
    const struct {
        const char *what;
        std::string bytes;
        int status;
        QString sentence;
        int closes = 0;
        const char *policy = nullptr;
    } cases[] = {
        {"declared length over the cap", putHead(contentLength(kCap + 1)), 413, tooLarge, 1, page},
        {"chunks past the cap, no last one", chunked, 413, tooLarge, 1},
        {"over the cap with 100-continue", bigExpect, 413, tooLarge, 1},
        {"body shorter than its length", shortBody, 400, incomplete, 2},
        {"slowloris headers", "GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: ", 400,
         malformed, 2},
        {"length not a number", "PUT /api/velino-sync HTTP/1.1\r\nContent-Length: abc\r\n\r\n", 400,
         malformed},
        {"preview", preview, 200, {}, 0, "sandbox;"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        RawHttpConnection connection(server.port());
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(connection.send(c.bytes));
        auto answer = connection.readAnswer(5s);
        ASSERT_TRUE(answer);
        EXPECT_EQ(
            std::pair(answer->status, c.sentence.isEmpty() ? QString() : errorText(answer->body)),
            std::pair(c.status, c.sentence));
        if (c.closes) {
            EXPECT_TRUE(connection.closedWithin(5s));
            EXPECT_GE(std::chrono::steady_clock::now() - start, c.closes == 2 ? 900ms : 0ms);
        }
        if (c.policy) {
            auto &h = answer->headers;
            EXPECT_EQ(h["cache-control"] + ' ' +
                          h["content-security-policy"].substr(0, strlen(c.policy)),
                      "no-store " + std::string(c.policy));
        }
    }
    EXPECT_EQ(store->count(), 0);
}

} // namespace
