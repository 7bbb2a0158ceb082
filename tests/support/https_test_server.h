#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>

class QSslServer;
class QSslSocket;

namespace velino::test {

// A new authority, unknown to any other, and a server certificate for IP:127.0.0.1 it signed.
struct TestTlsIdentity {
    QSslCertificate caCertificate;
    QSslCertificate serverCertificate;
    QSslKey serverKey;

    static std::optional<TestTlsIdentity> generate(QString *error);
};

struct TestHttpRequest {
    QByteArray method;
    QByteArray target;                     // path and query, as sent
    QHash<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;

    QByteArray header(const QByteArray &name) const { return headers.value(name.toLower()); }
};

struct TestHttpAnswer {
    int status = 200;
    QByteArray body;
    bool declareLength = true; // or else delimited by closing the connection
    bool silent = false;       // never answers
};

// HTTPS/1.1 on 127.0.0.1, on the calling thread's event loop: one request per connection,
// answered by the handler (404 until one is set), then closed.
class HttpsTestServer : public QObject {
    Q_OBJECT

public:
    using Handler = std::function<TestHttpAnswer(const TestHttpRequest &)>;

    explicit HttpsTestServer(const TestTlsIdentity &identity, QObject *parent = nullptr);

    bool listen(); // on a free port of 127.0.0.1
    QUrl url(const QString &path) const;
    void setHandler(Handler handler) { handler_ = std::move(handler); }
    const QList<TestHttpRequest> &requests() const { return requests_; }

private:
    void accept();
    void readFrom(QSslSocket *socket, QByteArray &buffer);
    void answer(QSslSocket *socket, const TestHttpRequest &request);

    QSslServer *server_;
    Handler handler_;
    QList<TestHttpRequest> requests_;
};

// Runs the event loop until done() is true or the time is over; returns done().
bool waitUntil(const std::function<bool()> &done, std::chrono::milliseconds timeout);

} // namespace velino::test
