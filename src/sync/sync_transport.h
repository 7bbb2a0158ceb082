#pragma once

#include "sync_client.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QSslCertificate>
#include <QSslError>
#include <QUrl>

#include <chrono>
#include <functional>

class QNetworkReply;
class QNetworkRequest;

namespace velino {

// Sends the sync requests over HTTPS with one QNetworkAccessManager, on the thread that
// owns the transport (the main thread). Each call returns at once; its callback runs
// exactly once, later, from the event loop, with the finished exchange. Certificates are
// always verified. Answers larger than 8 MiB are cut off and reported as a failure.
//
// Destroying the transport drops the requests under way without calling their callbacks;
// a callback must not delete the transport directly (deleteLater is fine).
class SyncTransport : public QObject {
    Q_OBJECT

public:
    using Callback = std::function<void(const SyncTransportResult &)>;

    static constexpr std::chrono::milliseconds kDefaultTransferTimeout{60000};
    static constexpr qint64 kMaxAnswerBytes = 8 * 1024 * 1024;

    explicit SyncTransport(QObject *parent = nullptr);
    ~SyncTransport() override;

    // A request fails when its transfer makes no progress for this long.
    void setTransferTimeout(std::chrono::milliseconds timeout) { transferTimeout_ = timeout; }
    std::chrono::milliseconds transferTimeout() const { return transferTimeout_; }

    // Certificate authorities trusted in addition to the default ones (tests use their own).
    // Connections kept open under the former trust are closed.
    void setExtraCaCertificates(const QList<QSslCertificate> &certificates);

    // PUT of a JSON body, with Content-Type and Accept "application/json".
    void put(const QUrl &url, const QByteArray &jsonBody, Callback callback);

    // GET of the endpoint with the single query item "code", Accept "application/json".
    // When no URL can be built, the callback gets error 20.
    void get(const QUrl &endpoint, const QString &code, Callback callback);

    // Requests sent and not finished yet.
    qsizetype pendingCount() const { return pending_.size(); }

private:
    struct Pending {
        Callback callback;
        QByteArray body;
        bool tooLarge = false;
        QList<QSslError::SslError> sslErrors; // met during the handshake
    };

    QNetworkRequest baseRequest(const QUrl &url) const;
    void track(QNetworkReply *reply, Callback callback);
    void readAvailable(QNetworkReply *reply);
    void checkDeclaredLength(QNetworkReply *reply);
    void finish(QNetworkReply *reply);
    void failLater(const VelinoError &error, Callback callback);

    QNetworkAccessManager manager_;
    std::chrono::milliseconds transferTimeout_ = kDefaultTransferTimeout;
    QList<QSslCertificate> extraCaCertificates_;
    QHash<QNetworkReply *, Pending> pending_;
};

} // namespace velino
