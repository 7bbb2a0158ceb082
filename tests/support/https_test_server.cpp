#include "https_test_server.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QSslServer>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtCore/qtestsupport_core.h>

namespace velino::test {
namespace {

// The authority and the server certificate, each with a random name or serial so that no
// two runs share an authority.
QByteArray opensslConfig() {
    const QByteArray tag = QByteArray::number(QRandomGenerator::global()->generate64(), 16);
    return "[req]\ndistinguished_name = dn\nprompt = no\n[dn]\nCN = Velino Test CA " + tag +
           "\n[v3_ca]\nbasicConstraints = critical, CA:TRUE\n"
           "keyUsage = critical, keyCertSign, cRLSign\nsubjectKeyIdentifier = hash\n"
           "[v3_server]\nbasicConstraints = critical, CA:FALSE\n"
           "keyUsage = critical, digitalSignature, keyEncipherment\n"
           "extendedKeyUsage = serverAuth\nsubjectAltName = IP:127.0.0.1\n"
           "subjectKeyIdentifier = hash\nauthorityKeyIdentifier = keyid\n";
}

} // namespace

std::optional<TestTlsIdentity> TestTlsIdentity::generate(QString *error) {
    const QString openssl = QStandardPaths::findExecutable("openssl");
    QTemporaryDir folder;
    QFile config(folder.filePath("openssl.cnf"));
    if (openssl.isEmpty() || !config.open(QIODevice::WriteOnly) ||
        config.write(opensslConfig()) <= 0) {
        *error = "openssl is not installed or its configuration cannot be written";
        return std::nullopt;
    }
    config.close();
    const QString common = "req -x509 -config openssl.cnf -days 2 -newkey ec -pkeyopt "
                           "ec_paramgen_curve:prime256v1 -nodes ";
    const QString serial = QString::number(QRandomGenerator::global()->generate64(), 16);
    for (const QString &step :
         {common + "-extensions v3_ca -keyout ca.key -out ca.crt",
          common + "-subj /CN=127.0.0.1 -CA ca.crt -CAkey ca.key -set_serial 0x" + serial +
              " -extensions v3_server -keyout server.key -out server.crt"}) {
        const QStringList arguments = step.split(u' ');
        QProcess process;
        process.setWorkingDirectory(folder.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(openssl, arguments);
        if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit ||
            process.exitCode() != 0) {
            *error = QStringLiteral("openssl %1 failed: %2")
                         .arg(arguments.join(u' '), QString::fromLocal8Bit(process.readAll()));
            return std::nullopt;
        }
    }
    const auto read = [&](const char *name) {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    TestTlsIdentity identity{QSslCertificate(read("ca.crt")), QSslCertificate(read("server.crt")),
                             QSslKey(read("server.key"), QSsl::Ec)};
    if (identity.caCertificate.isNull() || identity.serverCertificate.isNull() ||
        identity.serverKey.isNull()) {
        *error = "the generated certificates or key cannot be read";
        return std::nullopt;
    }
    return identity;
}

HttpsTestServer::HttpsTestServer(const TestTlsIdentity &identity, QObject *parent)
    : QObject(parent), server_(new QSslServer(this)) {
    QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
    ssl.setLocalCertificate(identity.serverCertificate);
    ssl.setPrivateKey(identity.serverKey);
    ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
    server_->setSslConfiguration(ssl);
    // QSslServer queues a connection only once its handshake is over.
    connect(server_, &QTcpServer::pendingConnectionAvailable, this, &HttpsTestServer::accept);
}

HttpsTestServer::~HttpsTestServer() {
    server_->close();
    const QList<QSslSocket *> sockets = buffers_.keys();
    buffers_.clear();
    for (QSslSocket *socket : sockets) {
        disconnect(socket, nullptr, this, nullptr);
        socket->abort();
    }
}

bool HttpsTestServer::listen() {
    return server_->listen(QHostAddress::LocalHost, 0);
}

QUrl HttpsTestServer::url(const QString &path) const {
    return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(server_->serverPort()).arg(path));
}

void HttpsTestServer::accept() {
    while (server_->hasPendingConnections()) {
        auto *socket = qobject_cast<QSslSocket *>(server_->nextPendingConnection());
        if (!socket)
            continue;
        socket->setParent(this);
        buffers_.insert(socket, {});
        connect(socket, &QSslSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QSslSocket::disconnected, this, [this, socket] {
            buffers_.remove(socket);
            socket->deleteLater();
        });
        readFrom(socket);
    }
}

void HttpsTestServer::readFrom(QSslSocket *socket) {
    const auto it = buffers_.find(socket);
    if (it == buffers_.end())
        return;
    QByteArray &buffer = *it;
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
    const TestHttpAnswer reply = handler_ ? handler_(request) : TestHttpAnswer::json(404, {});
    if (reply.silent)
        return;
    // The reason phrase is optional in meaning; clients read the status code.
    QByteArray head = "HTTP/1.1 " + QByteArray::number(reply.status) + " Status\r\n";
    if (!reply.contentType.isEmpty())
        head += "Content-Type: " + reply.contentType + "\r\n";
    if (reply.declareLength)
        head += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n";
    socket->write(head + "Connection: close\r\n\r\n" + reply.body);
    socket->disconnectFromHost(); // closes once everything written has left
}

quint16 closedLocalPort() {
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost, 0) ? probe.serverPort() : 0;
}

bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds timeout) {
    return QTest::qWaitFor(done, static_cast<int>(timeout.count()));
}

} // namespace velino::test
