#include "sync_client.h"

#include "sync_records.h"
#include "text.h"

#include <QDateTime>
#include <QLocale>
#include <QUrlQuery>

#include <algorithm>

namespace velino {

QString normalizedSyncCode(const QString &raw) {
    const QString upper = text::upperCased(raw);
    QString code;
    code.reserve(std::min(upper.size(), kSyncCodeMaxLength));
    // A user-perceived character is kept only when it is one allowed character on its own:
    // "E" followed by a combining accent, or "1" in a keycap sequence, is dropped whole.
    text::forEachCharacter(upper, [&code](QStringView cluster) {
        if (code.size() == kSyncCodeMaxLength || cluster.size() != 1)
            return;
        const char16_t u = cluster.front().unicode();
        if ((u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u'-')
            code.append(cluster.front());
    });
    return code;
}

bool isSyncCodeLongEnough(const QString &normalizedCode) {
    return normalizedCode.size() >= kSyncCodeMinLength;
}

QString syncTimeLabel(const QString &text) {
    const std::optional<Instant> instant = parseIsoText(text);
    if (!instant)
        return text;
    const QDateTime local = instant->toDateTime().toLocalTime();
    return QLocale(QStringLiteral("fr_FR")).toString(local, QStringLiteral("HH:mm"));
}

std::optional<VelinoError> validateSyncResponse(const SyncHttpResponse &response) {
    if (!response.isHttp)
        return VelinoError{kSyncErrorInvalidResponse, synctext::invalidResponse()};
    if (response.statusCode >= 200 && response.statusCode <= 299)
        return std::nullopt;
    QString decodeError;
    const std::optional<VelinoSyncErrorResponse> refusal =
        decodeSyncRecord<VelinoSyncErrorResponse>(response.body, &decodeError);
    return VelinoError{response.statusCode,
                       refusal ? refusal->error : synctext::refusedWithoutMessage()};
}

std::optional<QUrl> syncPullUrl(const QUrl &endpoint, const QString &code) {
    if (!endpoint.isValid() || endpoint.isRelative())
        return std::nullopt;
    // Encoded here, so that "+", "&", "=", "%" and the like reach the server as written.
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("code"), QString::fromLatin1(QUrl::toPercentEncoding(code)));
    QUrl url = endpoint;
    url.setQuery(query);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

QByteArray syncUploadBody(const QString &code, PresetKind activePreset,
                          const MailComposerData &data, Instant now) {
    VelinoSyncUpload upload;
    upload.code = code;
    upload.payload = VelinoSyncPayload::forSending(activePreset, data, now);
    return encodeSyncRecord(upload);
}

std::optional<SyncDownload> decodeSyncDownload(const QByteArray &body, QString *error) {
    std::optional<VelinoSyncDownloadResponse> response =
        decodeSyncRecord<VelinoSyncDownloadResponse>(body, error);
    if (!response)
        return std::nullopt;
    VelinoSyncSnapshot &snapshot = response->snapshot;
    return SyncDownload{snapshot.payload.activePreset, std::move(snapshot.payload.data),
                        std::move(snapshot.updatedAt)};
}

std::optional<QString> decodeSyncUploadAnswer(const QByteArray &body, QString *error) {
    std::optional<VelinoSyncUploadResponse> response =
        decodeSyncRecord<VelinoSyncUploadResponse>(body, error);
    if (!response)
        return std::nullopt;
    return std::move(response->updatedAt);
}

namespace {

// The failure of the exchange or of its status, if any.
bool answerFailed(const SyncTransportResult &result, VelinoError *error) {
    if (result.failure) {
        *error = *result.failure;
        return true;
    }
    if (std::optional<VelinoError> refusal = validateSyncResponse(result.response)) {
        *error = std::move(*refusal);
        return true;
    }
    return false;
}

} // namespace

std::optional<QString> syncUploadOutcome(const SyncTransportResult &result, VelinoError *error) {
    if (answerFailed(result, error))
        return std::nullopt;
    QString description;
    std::optional<QString> updatedAt = decodeSyncUploadAnswer(result.response.body, &description);
    if (!updatedAt)
        *error = VelinoError{kSyncErrorUndecodableAnswer, description};
    return updatedAt;
}

std::optional<SyncDownload> syncDownloadOutcome(const SyncTransportResult &result,
                                                VelinoError *error) {
    if (answerFailed(result, error))
        return std::nullopt;
    QString description;
    std::optional<SyncDownload> download = decodeSyncDownload(result.response.body, &description);
    if (!download)
        *error = VelinoError{kSyncErrorUndecodableAnswer, description};
    return download;
}

namespace synctext {

QString idle() {
    return QStringLiteral("Aucune synchronisation effectuee.");
}
QString codeTooShort() {
    return QStringLiteral("Le code prive doit contenir au moins 16 caracteres. Genere-le depuis "
                          "l'interface iPhone.");
}
QString pushing() {
    return QStringLiteral("Envoi du brouillon vers l'iPhone...");
}
QString pulling() {
    return QStringLiteral("Recuperation du dernier brouillon...");
}
QString pushDone() {
    return QStringLiteral("Synchronisation iPhone terminee.");
}
QString pullDone() {
    return QStringLiteral("Brouillon iPhone charge.");
}
QString invalidAddress() {
    return QStringLiteral("Adresse de synchronisation invalide.");
}
QString invalidResponse() {
    return QStringLiteral("Reponse de synchronisation invalide.");
}
QString refusedWithoutMessage() {
    return QStringLiteral("Synchronisation impossible.");
}
QString answerTooLarge() {
    return QStringLiteral("Reponse de synchronisation trop volumineuse (plus de 8 Mo).");
}
QString timedOut() {
    return QStringLiteral("Delai de synchronisation depasse : le serveur ne repond pas.");
}
QString pushSucceeded(const QString &answerUpdatedAt) {
    return QStringLiteral("Brouillon envoye vers l'iPhone \u00B7 ") +
           syncTimeLabel(answerUpdatedAt);
}
QString pullSucceeded(const QString &snapshotUpdatedAt) {
    return QStringLiteral("Brouillon recupere \u00B7 ") + syncTimeLabel(snapshotUpdatedAt);
}

} // namespace synctext

} // namespace velino
