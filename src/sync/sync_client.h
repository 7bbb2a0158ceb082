#pragma once

#include "instant.h"
#include "mail_composer_data.h"
#include "preset_kind.h"
#include "velino_error.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

// The rules of the phone sync client that do not touch the network: the private code, the
// pull address, the request body, the checking and decoding of answers, and the texts the
// store shows while and after syncing.
namespace velino {

// Private code: 16 to 64 characters from A-Z, 0-9 and "-".
inline constexpr qsizetype kSyncCodeMinLength = 16;
inline constexpr qsizetype kSyncCodeMaxLength = 64;

// Per-user key/value store key of the remembered code.
inline QString syncCodeKey() {
    return QStringLiteral("velino-sync-code-v1");
}

// Codes of the errors the client raises itself. Refusals by the server carry the HTTP
// status; transport failures carry the QNetworkReply::NetworkError value.
inline constexpr int kSyncErrorInvalidAddress = 20;
inline constexpr int kSyncErrorInvalidResponse = 21;
inline constexpr int kSyncErrorUndecodableAnswer = 22;
inline constexpr int kSyncErrorAnswerTooLarge = 23;

// Upper-cases the whole text (full Unicode mappings: "ß" gives "SS"), keeps only A-Z, 0-9
// and "-", and cuts what remains to 64 characters.
QString normalizedSyncCode(const QString &raw);

// A normalised code long enough to be sent.
bool isSyncCodeLongEnough(const QString &normalizedCode);

// "HH:mm" in the user's time zone (locale fr_FR) when text is an internet date-time with
// whole seconds and a zone designator; any other text comes back unchanged.
QString syncTimeLabel(const QString &text);

// What came back from the server, when something came back.
struct SyncHttpResponse {
    bool isHttp = false;
    int statusCode = 0;
    QByteArray body;
};

// One finished exchange: either a failure before a whole answer was received (transport
// error, answer too large, address that cannot be built), or the answer.
struct SyncTransportResult {
    std::optional<VelinoError> failure;
    SyncHttpResponse response;
};

// Nothing for a 2xx HTTP answer. A non-HTTP answer gives error 21; any other status gives
// an error with that status as code and the server's `error` text as description (as it is,
// even empty), or "Synchronisation impossible." when the body is not an error record.
std::optional<VelinoError> validateSyncResponse(const SyncHttpResponse &response);

// The endpoint with its query replaced by the single item "code" (percent-encoded as
// needed); nothing when no valid absolute URL results.
std::optional<QUrl> syncPullUrl(const QUrl &endpoint, const QString &code);

// Compact JSON of the upload request for this code and state, stamped with now.
QByteArray syncUploadBody(const QString &code, PresetKind activePreset,
                          const MailComposerData &data, Instant now);

// The part of a downloaded snapshot that is applied, with the snapshot's own time text.
struct SyncDownload {
    PresetKind activePreset = PresetKind::Devis;
    MailComposerData data;
    QString updatedAt;
};

// Strict decoding of a 2xx answer body; on failure *error holds the French description.
std::optional<SyncDownload> decodeSyncDownload(const QByteArray &body, QString *error);
// The `updatedAt` text of an upload answer, not parsed.
std::optional<QString> decodeSyncUploadAnswer(const QByteArray &body, QString *error);

// The whole reading of a finished exchange: transport failure, then the answer's status,
// then decoding. On failure *error is the error to show; nothing is to be applied.
std::optional<QString> syncUploadOutcome(const SyncTransportResult &result, VelinoError *error);
std::optional<SyncDownload> syncDownloadOutcome(const SyncTransportResult &result,
                                                VelinoError *error);

// Texts shown by the store around a push or a pull.
namespace synctext {
QString idle();
QString codeTooShort();
QString pushing();
QString pulling();
QString pushDone();
QString pullDone();
QString invalidAddress();
QString invalidResponse();
QString refusedWithoutMessage();
QString answerTooLarge();
QString timedOut();
// "Brouillon envoye vers l'iPhone · " and the time label of the answer's updatedAt.
QString pushSucceeded(const QString &answerUpdatedAt);
// "Brouillon recupere · " and the time label of the snapshot's updatedAt.
QString pullSucceeded(const QString &snapshotUpdatedAt);
} // namespace synctext

} // namespace velino
