#pragma once

#include "http_exchange.h"
#include "sync_records.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace velino::test {

inline constexpr auto kCode = "AB12-CD34EF56GH78";

// The upload the desktop sends for its default record.
inline VelinoSyncUpload defaultUpload(const QString &code = QString::fromLatin1(kCode)) {
    return VelinoSyncUpload{code, VelinoSyncPayload::forSending(PresetKind::Devis,
                                                                MailComposerData::defaultRecord(),
                                                                Instant{788918400})};
}

inline std::string compactJson(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

inline server::HttpRequest putRequest(const std::string &body,
                                      const std::string &peer = "192.0.2.10") {
    server::HttpRequest request;
    request.method = "PUT";
    request.path = "/api/velino-sync";
    request.headers = {{"content-type", "application/json"}};
    request.body = body;
    request.peerAddress = peer;
    return request;
}

inline server::HttpRequest getRequest(const std::string &code,
                                      const std::string &peer = "192.0.2.10") {
    server::HttpRequest request;
    request.method = "GET";
    request.path = "/api/velino-sync";
    request.query = {{"code", code}};
    request.peerAddress = peer;
    return request;
}

// The French sentence of an error record, or "(not an error record)".
inline QString errorText(const std::string &body) {
    QString error;
    const auto record =
        decodeSyncRecord<VelinoSyncErrorResponse>(QByteArray::fromStdString(body), &error);
    return record ? record->error : QStringLiteral("(not an error record)");
}

} // namespace velino::test
