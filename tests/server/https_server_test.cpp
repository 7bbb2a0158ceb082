#include "http_server_fixture.h"
#include "https_test_server.h"

#include <QFile>
#include <QSslConfiguration>
#include <QSslSocket>

using namespace velino::server;
using namespace velino::test;

namespace {

bool writeFile(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The HTTP layer over TLS, with a certificate made by openssl for this run.
class HttpsServerTest : public HttpServerFixture {
protected:
    void SetUp() override {
        QString error;
        identity = TestTlsIdentity::generate(&error);
        ASSERT_TRUE(identity) << error.toStdString();
        HttpServerOptions options;
        options.port = 0;
        options.tlsCertFile = folder.filePath(QStringLiteral("server.crt"));
        options.tlsKeyFile = folder.filePath(QStringLiteral("server.key"));
        options.threads = 4;
        ASSERT_TRUE(writeFile(options.tlsCertFile, identity->serverCertificate.toPem()));
        ASSERT_TRUE(writeFile(options.tlsKeyFile, identity->serverKey.toPem()));
        ASSERT_NO_FATAL_FAILURE(startServer({}, options));
    }

    // A client socket trusting this run's authority, connected and encrypted.
    std::unique_ptr<QSslSocket> connect(QSsl::SslProtocol protocol = QSsl::SecureProtocols) {
        auto socket = std::make_unique<QSslSocket>();
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates({identity->caCertificate});
        tls.setProtocol(protocol);
        socket->setSslConfiguration(tls);
        socket->connectToHostEncrypted(QStringLiteral("127.0.0.1"), quint16(server->port()));
        socket->waitForEncrypted(5000);
        return socket;
    }

    static QByteArray health(QSslSocket &socket, const QByteArray &padding = {}) {
        socket.write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Pad: " + padding + "\r\n\r\n");
        QByteArray answer;
        while (!answer.contains("\r\n\r\nok") && socket.waitForReadyRead(5000))
            answer += socket.readAll();
        return answer;
    }

    std::optional<TestTlsIdentity> identity;
};

TEST_F(HttpsServerTest, SpeaksTls12And13OverKeptAliveConnections) {
    for (const QSsl::SslProtocol protocol : {QSsl::TlsV1_2, QSsl::TlsV1_3}) {
        auto socket = connect(protocol);
        ASSERT_TRUE(socket->isEncrypted()) << socket->errorString().toStdString();
        EXPECT_EQ(socket->sessionProtocol(), protocol);
        for (int round = 0; round < 2; ++round)
            EXPECT_TRUE(health(*socket).startsWith("HTTP/1.1 200 OK")) << round;
    }
}

TEST_F(HttpsServerTest, EndlessHeaderLineLosesTheConnection) {
    auto socket = connect();
    ASSERT_TRUE(socket->isEncrypted()) << socket->errorString().toStdString();
    socket->write("GET /healthz HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Long: ");
    const QByteArray chunk(64 * 1024, 'a');
    int sent = 0;
    // 64 MiB would be held in the server's memory if it kept reading.
    while (sent < 1024 && socket->state() == QAbstractSocket::ConnectedState) {
        socket->write(chunk);
        socket->waitForBytesWritten(2000);
        ++sent;
    }
    EXPECT_LT(sent, 1024);
    // Ordinary requests with several kilobytes of headers still pass.
    EXPECT_TRUE(health(*connect(), QByteArray(6000, 'b')).startsWith("HTTP/1.1 200 OK"));
}

} // namespace
