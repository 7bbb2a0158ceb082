#include "https_test_server.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QSslServer>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

namespace velino::test {
namespace {

constexpr qsizetype kMaxHeaderBytes = 64 * 1024;

bool writeFile(const QString &path, const QByteArray &content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool runOpenssl(const QString &program, const QStringList &arguments, const QString &folder,
                QString *error) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        *error = QStringLiteral("openssl %1 failed: %2")
                     .arg(arguments.join(u' '), QString::fromLocal8Bit(process.readAll()));
        return false;
    }
    return true;
}

} // namespace

std::optional<TestTlsIdentity> TestTlsIdentity::generate(QString *error) {
    const QString openssl = QStandardPaths::findExecutable("openssl");
    if (openssl.isEmpty()) {
        *error = "the openssl command is not installed";
        return std::nullopt;
    }
    QTemporaryDir folder;
    if (!folder.isValid()) {
        *error = "no temporary folder: " + folder.errorString();
        return std::nullopt;
    }
    const QString dir = folder.path();
    const QByteArray tag = QByteArray::number(QRandomGenerator::global()->generate64(), 16);
    if (!writeFile(dir + "/ca.cnf", "[req]\ndistinguished_name = dn\nprompt = no\n"
                                    "x509_extensions = v3_ca\n[dn]\nCN = Velino Test CA " +
                                        tag +
                                        "\n[v3_ca]\nbasicConstraints = critical, CA:TRUE\n"
                                        "keyUsage = critical, keyCertSign, cRLSign\n"
                                        "subjectKeyIdentifier = hash\n") ||
        !writeFile(dir + "/server.cnf",
                   "[req]\ndistinguished_name = dn\nprompt = no\n[dn]\nCN = 127.0.0.1\n"
                   "[v3_server]\nbasicConstraints = critical, CA:FALSE\n"
                   "keyUsage = critical, digitalSignature, keyEncipherment\n"
                   "extendedKeyUsage = serverAuth\nsubjectAltName = IP:127.0.0.1\n"
                   "subjectKeyIdentifier = hash\nauthorityKeyIdentifier = keyid\n")) {
        *error = "cannot write the openssl configuration";
        return std::nullopt;
    }
    const QStringList ecKey{"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"};
    const QString serial = "0x" + QString::number(QRandomGenerator::global()->generate64(), 16);
    const QList<QStringList> steps{
        QStringList{"req", "-x509", "-config", "ca.cnf", "-keyout", "ca.key", "-out", "ca.crt",
                    "-days", "2"} +
            ecKey,
        QStringList{"req", "-new", "-config", "server.cnf", "-keyout", "server.key", "-out",
                    "server.csr"} +
            ecKey,
        {"x509", "-req", "-in", "server.csr", "-CA", "ca.crt", "-CAkey", "ca.key", "-set_serial",
         serial, "-days", "2", "-extfile", "server.cnf", "-extensions", "v3_server", "-out",
         "server.crt"},
    };
    for (const QStringList &arguments : steps)
        if (!runOpenssl(openssl, arguments, dir, error))
            return std::nullopt;

    TestTlsIdentity identity;
    identity.caCertificate = QSslCertificate(readFile(dir + "/ca.crt"));
    identity.serverCertificate = QSslCertificate(readFile(dir + "/server.crt"));
    identity.serverKey = QSslKey(readFile(dir + "/server.key"), QSsl::Ec);
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
    if (headerEnd < 0) {
        if (buffer.size() > kMaxHeaderBytes)
            socket->abort();
        return;
    }
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    TestHttpRequest request;
    request.method = requestLine.value(0);
    request.target = requestLine.value(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon > 0)
            request.headers.insert(lines[i].left(colon).trimmed().toLower(),
                                   lines[i].mid(colon + 1).trimmed());
    }
    bool lengthOk = true;
    const QByteArray lengthText = request.header("content-length");
    const qsizetype length = lengthText.isEmpty() ? 0 : lengthText.toLongLong(&lengthOk);
    if (!lengthOk || length < 0) {
        socket->abort();
        return;
    }
    const qsizetype bodyStart = headerEnd + 4;
    if (buffer.size() - bodyStart < length)
        return;
    request.body = buffer.mid(bodyStart, length);
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
    head += "Connection: close\r\n\r\n";
    socket->write(head);
    socket->write(reply.body);
    // Closes once everything written has left.
    socket->disconnectFromHost();
}

quint16 closedLocalPort() {
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    const quint16 port = probe.serverPort();
    probe.close();
    return port;
}

bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds timeout) {
    if (done())
        return true;
    const QDeadlineTimer deadline(timeout);
    QEventLoop loop;
    QTimer tick;
    tick.setInterval(5);
    QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
        if (done() || deadline.hasExpired())
            loop.quit();
    });
    tick.start();
    loop.exec();
    return done();
}

} // namespace velino::test
