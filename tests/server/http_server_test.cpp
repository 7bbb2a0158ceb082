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

constexpr qint64 kCap = 8 * 1024 * 1024;

// The HTTP layer on a real socket (plain HTTP on a free port of 127.0.0.1), cutting clients
// after one second without progress instead of thirty.
class HttpServerTest : public HttpServerFixture {
protected:
    void SetUp() override {
        HttpServerOptions options;
        options.port = 0;
        options.plainHttp = true;
        options.ioTimeout = 1s;
        options.keepAliveIdle = 1s;
        options.threads = 8;
        ASSERT_NO_FATAL_FAILURE(startServer({}, options));
    }

    int port() const { return server->port(); }

    static std::string putHead(const std::string &extraHeaders) {
        return "PUT /api/velino-sync HTTP/1.1\r\nHost: 127.0.0.1\r\n"
               "Content-Type: application/json\r\n" +
               extraHeaders + "\r\n";
    }
};

TEST_F(HttpServerTest, KeepAliveCarriesSeveralRequests) {
    RawHttpConnection connection(port());
    const std::string body = encodeSyncRecord(defaultUpload()).toStdString();
    ASSERT_TRUE(
        connection.send(putHead("Content-Length: " + std::to_string(body.size()) + "\r\n") + body));
    const auto put = connection.readAnswer(5s);
    ASSERT_TRUE(put);
    EXPECT_EQ(put->status, 200) << put->body;
    const std::string get = "GET /api/velino-sync?code=" + std::string(kCode) + " HTTP/1.1\r\n";
    ASSERT_TRUE(connection.send(get + "Host: 127.0.0.1\r\n\r\n"));
    const auto got = connection.readAnswer(5s);
    ASSERT_TRUE(got);
    EXPECT_EQ(got->status, 200);
    EXPECT_EQ(got->headers.at("content-type"), "application/json");
    EXPECT_NE(got->body.find(R"("payload":{)"), std::string::npos);
}

TEST_F(HttpServerTest, DeclaredOversizedBodyIsRefusedBeforeItIsSent) {
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send(putHead("Content-Length: " + std::to_string(kCap + 1) + "\r\n")));
    // Not one byte of the body has been sent: the answer comes from the headers alone.
    const auto answer = connection.readAnswer(5s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 413);
    EXPECT_EQ(errorText(answer->body), QString::fromUtf8(texts::kBodyTooLarge).arg(kCap));
    EXPECT_TRUE(connection.closedWithin(5s));
    EXPECT_EQ(store->count(), 0);
}

TEST_F(HttpServerTest, OversizedBodyIsRefusedInsteadOfContinue) {
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send(
        putHead("Expect: 100-continue\r\nContent-Length: " + std::to_string(kCap + 1) + "\r\n")));
    const auto answer = connection.readAnswer(5s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 413);
    EXPECT_EQ(errorText(answer->body), QString::fromUtf8(texts::kBodyTooLarge).arg(kCap));
    EXPECT_TRUE(connection.closedWithin(5s));
}

TEST_F(HttpServerTest, ChunkedBodyIsRefusedOncePastTheCap) {
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send(putHead("Transfer-Encoding: chunked\r\n")));
    const std::string chunk = "10000\r\n" + std::string(0x10000, ' ') + "\r\n";
    qint64 sent = 0;
    // The server stops reading a little past 8 MiB; sending fails once it has closed.
    while (sent < 4 * kCap && connection.send(chunk))
        sent += 0x10000;
    EXPECT_LT(sent, 4 * kCap);
    const auto answer = connection.readAnswer(5s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 413);
    EXPECT_EQ(errorText(answer->body), QString::fromUtf8(texts::kBodyTooLarge).arg(kCap));
    EXPECT_EQ(store->count(), 0);
}

TEST_F(HttpServerTest, SlowlorisHeadersAreCutAfterTheTimeout) {
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Slow: "));
    const auto start = std::chrono::steady_clock::now();
    // Answered after the time without progress, then closed once the keep-alive wait ends.
    EXPECT_TRUE(connection.closedWithin(5s));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 900ms);
}

TEST_F(HttpServerTest, BodyShorterThanItsLengthIsRefusedAndStoresNothing) {
    const std::string body = encodeSyncRecord(defaultUpload()).toStdString();
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send(
        putHead("Content-Length: " + std::to_string(body.size() + 100) + "\r\n") + body));
    const auto answer = connection.readAnswer(5s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 400);
    EXPECT_EQ(errorText(answer->body), QString::fromUtf8(texts::kIncompleteBody));
    EXPECT_TRUE(connection.closedWithin(5s));
    EXPECT_EQ(store->count(), 0);
}

TEST_F(HttpServerTest, BodyLongerThanItsLengthIsRefusedAndStoresNothing) {
    const std::string body = encodeSyncRecord(defaultUpload()).toStdString();
    RawHttpConnection connection(port());
    ASSERT_TRUE(connection.send(putHead("Content-Length: 40\r\n") + body));
    const auto answer = connection.readAnswer(5s);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 400);
    QString decoderText;
    decodeSyncRecord<VelinoSyncUpload>(QByteArray::fromStdString(body.substr(0, 40)), &decoderText);
    EXPECT_EQ(errorText(answer->body), decoderText);
    EXPECT_EQ(store->count(), 0);
}

TEST_F(HttpServerTest, MalformedRequestsGetAFrenchRefusal) {
    const std::string requests[] = {
        "GARBAGE\r\n\r\n",
        "PUT /api/velino-sync HTTP/9.9\r\nHost: x\r\n\r\n",
        "PUT /api/velino-sync HTTP/1.1\r\nContent-Length: abc\r\n\r\n",
    };
    for (const std::string &request : requests) {
        RawHttpConnection connection(port());
        ASSERT_TRUE(connection.send(request));
        const auto answer = connection.readAnswer(5s);
        ASSERT_TRUE(answer) << request;
        EXPECT_EQ(answer->status, 400) << request;
        EXPECT_EQ(errorText(answer->body), QString::fromUtf8(texts::kMalformedRequest)) << request;
    }
    EXPECT_EQ(store->count(), 0);
}

} // namespace
