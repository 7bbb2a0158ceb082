#include "sync_transport.h"

#include "transport_failure_text.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>

namespace velino {
namespace {

const QByteArray kJsonType = QByteArrayLiteral("application/json");

// Failures of the connection itself (refused, closed, timed out, TLS, proxy, redirect
// loops) and of the protocol; the other error values of QNetworkReply stand for an HTTP
// status outside 2xx, whose answer is read like any other.
bool isConnectionFailure(QNetworkReply::NetworkError error) {
    return (error > QNetworkReply::NoError && error < QNetworkReply::ContentAccessDenied) ||
           error == QNetworkReply::ProtocolUnknownError || error == QNetworkReply::ProtocolFailure;
}

} // namespace

SyncTransport::SyncTransport(QObject *parent) : QObject(parent) {}

void SyncTransport::setExtraCaCertificates(const QList<QSslCertificate> &certificates) {
    extraCaCertificates_ = certificates;
    // Pooled connections keep the TLS settings they were opened with.
    manager_.clearConnectionCache();
}

SyncTransport::~SyncTransport() {
    const QList<QNetworkReply *> replies = pending_.keys();
    for (QNetworkReply *reply : replies) {
        disconnect(reply, nullptr, this, nullptr);
        reply->abort();
    }
    pending_.clear();
}

QNetworkRequest SyncTransport::baseRequest(const QUrl &url) const {
    QNetworkRequest request(url);
    request.setRawHeader("Accept", kJsonType);
    request.setTransferTimeout(static_cast<int>(transferTimeout_.count()));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::PreferNetwork);
    if (!extraCaCertificates_.isEmpty()) {
        QSslConfiguration ssl = request.sslConfiguration();
        ssl.addCaCertificates(extraCaCertificates_);
        request.setSslConfiguration(ssl);
    }
    return request;
}

void SyncTransport::put(const QUrl &url, const QByteArray &jsonBody, Callback callback) {
    QNetworkRequest request = baseRequest(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, kJsonType);
    track(manager_.put(request, jsonBody), std::move(callback));
}

void SyncTransport::get(const QUrl &endpoint, const QString &code, Callback callback) {
    const std::optional<QUrl> url = syncPullUrl(endpoint, code);
    if (!url) {
        failLater(VelinoError{kSyncErrorInvalidAddress, synctext::invalidAddress()},
                  std::move(callback));
        return;
    }
    track(manager_.get(baseRequest(*url)), std::move(callback));
}

void SyncTransport::failLater(const VelinoError &error, Callback callback) {
    QMetaObject::invokeMethod(
        this,
        [error, callback = std::move(callback)] {
            SyncTransportResult result;
            result.failure = error;
            callback(result);
        },
        Qt::QueuedConnection);
}

void SyncTransport::track(QNetworkReply *reply, Callback callback) {
    pending_.insert(reply, Pending{std::move(callback), {}, false, {}});
    connect(reply, &QNetworkReply::metaDataChanged, this,
            [this, reply] { checkDeclaredLength(reply); });
    connect(reply, &QNetworkReply::sslErrors, this, [this, reply](const QList<QSslError> &errors) {
        const auto it = pending_.find(reply);
        if (it == pending_.end())
            return;
        for (const QSslError &e : errors)
            it->sslErrors.append(e.error());
    });
    connect(reply, &QNetworkReply::readyRead, this, [this, reply] { readAvailable(reply); });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { finish(reply); });
}

void SyncTransport::checkDeclaredLength(QNetworkReply *reply) {
    const auto it = pending_.find(reply);
    if (it == pending_.end() || it->tooLarge)
        return;
    bool known = false;
    const qlonglong declared =
        reply->header(QNetworkRequest::ContentLengthHeader).toLongLong(&known);
    if (known && declared > kMaxAnswerBytes) {
        it->tooLarge = true;
        // Emits finished, which reports the failure and forgets the request.
        reply->abort();
    }
}

void SyncTransport::readAvailable(QNetworkReply *reply) {
    const auto it = pending_.find(reply);
    if (it == pending_.end() || it->tooLarge)
        return;
    it->body += reply->read(kMaxAnswerBytes + 1 - it->body.size());
    if (it->body.size() > kMaxAnswerBytes) {
        it->tooLarge = true;
        it->body.clear();
        reply->abort();
    }
}

void SyncTransport::finish(QNetworkReply *reply) {
    const auto it = pending_.find(reply);
    if (it == pending_.end())
        return;
    Pending pending = std::move(*it);
    pending_.erase(it);
    reply->deleteLater();

    SyncTransportResult result;
    if (!pending.tooLarge && reply->isReadable()) {
        pending.body += reply->read(kMaxAnswerBytes + 1 - pending.body.size());
        pending.tooLarge = pending.body.size() > kMaxAnswerBytes;
    }
    const QNetworkReply::NetworkError error = reply->error();
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (pending.tooLarge) {
        result.failure = VelinoError{kSyncErrorAnswerTooLarge, synctext::answerTooLarge()};
    } else if (error == QNetworkReply::OperationCanceledError) {
        // Only the transfer timeout cancels a request besides the size check above; the
        // reply then just says "Operation canceled".
        result.failure = VelinoError{QNetworkReply::TimeoutError, synctext::timedOut()};
    } else if (isConnectionFailure(error) ||
               (error != QNetworkReply::NoError && !status.isValid())) {
        result.failure =
            VelinoError{static_cast<int>(error),
                        transportFailureText(error, pending.sslErrors, reply->errorString())};
    } else {
        result.response.isHttp = status.isValid();
        result.response.statusCode = status.isValid() ? status.toInt() : 0;
        result.response.body = std::move(pending.body);
    }
    pending.callback(result);
}

} // namespace velino
