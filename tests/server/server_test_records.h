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

inline std::string uploadBody(const QString &code = QString::fromLatin1(kCode)) {
    return encodeSyncRecord(defaultUpload(code)).toStdString();
}

inline std::string compactJson(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

inline server::HttpRequest request(const std::string &method, const std::string &path,
                                   const std::string &body = {},
                                   const std::string &peer = "192.0.2.10") {
    server::HttpRequest r;
    r.method = method;
    r.path = path;
    r.body = body;
    r.peerAddress = peer;
    return r;
}

inline server::HttpRequest putRequest(const std::string &body,
                                      const std::string &peer = "192.0.2.10") {
    server::HttpRequest r = request("PUT", "/api/velino-sync", body, peer);
    r.headers = {{"content-type", "application/json"}};
    return r;
}

inline server::HttpRequest getRequest(const std::string &code,
                                      const std::string &peer = "192.0.2.10") {
    server::HttpRequest r = request("GET", "/api/velino-sync", {}, peer);
    r.query = {{"code", code}};
    return r;
}

// The French sentence of an error record, or "(not an error record)".
inline QString errorText(const std::string &body) {
    QString error;
    const auto record =
        decodeSyncRecord<VelinoSyncErrorResponse>(QByteArray::fromStdString(body), &error);
    return record ? record->error : QStringLiteral("(not an error record)");
}

} // namespace velino::test
