#include "https_test_server.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtCore/qtestsupport_core.h>

#include <memory>

namespace velino::test {

std::optional<TestTlsIdentity> TestTlsIdentity::generate(QString *error) {
    QTemporaryDir folder;
    // A random authority name and serial: no two runs share an authority.
    const QString common = "req -x509 -config /dev/null -days 2 -newkey ec -pkeyopt "
                           "ec_paramgen_curve:prime256v1 -nodes -addext basicConstraints=critical,";
    const QString random = QString::number(QRandomGenerator::global()->generate64(), 16);
    for (const QString &step :
         {common + "CA:TRUE -addext keyUsage=critical,keyCertSign,cRLSign -subj /CN=VelinoTestCA-" +
              random + " -keyout ca.key -out ca.crt",
          common +
              "CA:FALSE -addext keyUsage=critical,digitalSignature,keyEncipherment -addext "
              "extendedKeyUsage=serverAuth -addext subjectAltName=IP:127.0.0.1 -subj "
              "/CN=127.0.0.1 -CA ca.crt -CAkey ca.key -set_serial 0x" +
              random + " -keyout server.key -out server.crt"}) {
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start("openssl", step.split(u' '));
        if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit ||
            process.exitCode() != 0) {
            *error = "openssl " + step + " failed: " + QString::fromLocal8Bit(process.readAll());
            return std::nullopt;
        }
    }
    QFile key(folder.filePath("server.key"));
    TestTlsIdentity identity{QSslCertificate::fromPath(folder.filePath("ca.crt")).value(0),
                             QSslCertificate::fromPath(folder.filePath("server.crt")).value(0),
                             QSslKey(key.open(QIODevice::ReadOnly) ? key.readAll() : "", QSsl::Ec)};
    if (!identity.caCertificate.isNull() && !identity.serverCertificate.isNull() &&
        !identity.serverKey.isNull())
        return identity;
    *error = "the generated certificates or key cannot be read";
    return std::nullopt;
}

HttpsTestServer::HttpsTestServer(const TestTlsIdentity &identity, QObject *parent)
    : QObject(parent), server_(new QSslServer(this)) {
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    ssl.setLocalCertificate(identity.serverCertificate);
    ssl.setPrivateKey(identity.serverKey);
    ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
    server_->setSslConfiguration(ssl);
    connect(server_, &QTcpServer::pendingConnectionAvailable, this, &HttpsTestServer::accept);
}

bool HttpsTestServer::listen() {
    return server_->listen(QHostAddress::LocalHost, 0);
}

QUrl HttpsTestServer::url(const QString &path) const {
    return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(server_->serverPort()).arg(path));
}

void HttpsTestServer::accept() {
    while (server_->hasPendingConnections()) {
        auto *socket = static_cast<QSslSocket *>(server_->nextPendingConnection());
        // Deleted with the server, after its connections to the server are cut.
        socket->setParent(this);
        const auto buffer = std::make_shared<QByteArray>();
        connect(socket, &QSslSocket::readyRead, this,
                [this, socket, buffer] { readFrom(socket, *buffer); });
        connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        readFrom(socket, *buffer);
    }
}

void HttpsTestServer::readFrom(QSslSocket *socket, QByteArray &buffer) {
    buffer += socket->readAll();
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return;
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    TestHttpRequest request{requestLine.value(0), requestLine.value(1), {}, {}};
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            request.headers.insert(line.left(colon).trimmed().toLower(),
                                   line.mid(colon + 1).trimmed());
    }
    const qsizetype length = request.header("content-length").toLongLong();
    if (buffer.size() - headerEnd - 4 < length)
        return;
    request.body = buffer.mid(headerEnd + 4, length);
    buffer.clear();
    requests_.append(request);
    answer(socket, request);
}

void HttpsTestServer::answer(QSslSocket *socket, const TestHttpRequest &request) {
    const TestHttpAnswer reply = handler_ ? handler_(request) : TestHttpAnswer{404, {}};
    if (reply.silent)
        return;
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) +
                      " Status\r\nContent-Type: application/json\r\n";
    if (reply.declareLength)
        head += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n";
    socket->write(head + "Connection: close\r\n\r\n" + reply.body);
    socket->disconnectFromHost();
}

bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds timeout) {
    return QTest::qWaitFor(done, static_cast<int>(timeout.count()));
}

} // namespace velino::test
