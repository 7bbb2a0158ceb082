#include "http_server_fixture.h"
#include "raw_http_client.h"
#include "server_test_records.h"
#include "sqlite_slot_store.h"
#include "sync_texts.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace velino;
using namespace velino::server;
using namespace velino::test;
using namespace std::chrono_literals;

namespace {

constexpr qint64 kSmallCap = 4096;

// The phone page's addresses through the HTTP layer on a real socket, with a small body cap.
class WebSocketTest : public HttpServerFixture {
protected:
    void SetUp() override {
        SyncServiceConfig config;
        config.maxBodyBytes = kSmallCap;
        HttpServerOptions options;
        options.port = 0;
        options.plainHttp = true;
        options.ioTimeout = 1s;
        options.threads = 4;
        ASSERT_NO_FATAL_FAILURE(startServer(config, options));
    }

    std::optional<RawHttpAnswer> post(const std::string &path, const std::string &type,
                                      const std::string &body) {
        RawHttpConnection connection(server->port());
        const std::string head = "POST " + path +
                                 " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: " + type +
                                 "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
        if (!connection.send(head + body))
            return std::nullopt;
        return connection.readAnswer(5s);
    }
};

TEST_F(WebSocketTest, PageRenderAndPreviewKeepTheirHeadersAndTheBodyCap) {
    const std::string render = R"({"activePreset":"rdv"})";
    const std::string tooLarge =
        R"({"activePreset":"rdv","pad":")" + std::string(kSmallCap, 'x') + R"("})";
    const struct {
        std::string path, type, body;
        int status;
        const char *policyStart;
    } cases[] = {
        {"/api/velino-render", "application/json", render, 200, "default-src 'none'"},
        {"/api/velino-preview", "application/x-www-form-urlencoded",
         "state=%7B%22activePreset%22%3A%22rdv%22%7D", 200, "sandbox;"},
        {"/api/velino-render", "application/json", tooLarge, 413, "default-src 'none'"},
        {"/api/velino-preview", "application/x-www-form-urlencoded", "state=" + tooLarge, 413,
         "default-src 'none'"},
    };
    for (const auto &c : cases) {
        auto answer = post(c.path, c.type, c.body);
        ASSERT_TRUE(answer) << c.path;
        EXPECT_EQ(answer->status, c.status) << c.path << " " << answer->body.substr(0, 200);
        EXPECT_EQ(answer->headers["cache-control"], "no-store") << c.path;
        EXPECT_EQ(answer->headers["x-content-type-options"], "nosniff") << c.path;
        EXPECT_EQ(answer->headers["referrer-policy"], "no-referrer") << c.path;
        EXPECT_EQ(answer->headers["content-security-policy"].rfind(c.policyStart, 0), 0u)
            << c.path << " " << answer->headers["content-security-policy"];
        if (c.status == 413) {
            EXPECT_EQ(errorText(answer->body),
                      QString::fromUtf8(texts::kBodyTooLarge).arg(kSmallCap));
        }
    }
    auto page = rawRequest(server->port(), "GET", "/velino.html");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->status, 200);
    EXPECT_EQ(page->headers["content-type"], "text/html; charset=utf-8");
    EXPECT_NE(page->body.find("<title>VELINO Mobile</title>"), std::string::npos);
}

} // namespace
