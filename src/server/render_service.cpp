#include "render_service.h"

#include "custom_mail_preset.h"
#include "json_reader.h"
#include "mail_template_context.h"
#include "record_readers.h"
#include "rendered_mail_json.h"
#include "sync_service.h"
#include "web_headers.h"

#include <QJsonDocument>
#include <QUrlQuery>

namespace velino::server {
namespace {

constexpr auto kInvalidRenderRequest = "Requete de rendu invalide : %1.";

struct RenderRequest {
    PresetKind activePreset = PresetKind::Devis;
    MailComposerData data;
};

// The id is cut in the message: the body is the client's, of any length.
std::optional<PresetKind> readKind(JsonReader &reader, const QString &id, QStringView key) {
    const std::optional<PresetKind> kind = presetKindFromId(id);
    if (!kind)
        reader.fail(presetKindError(reader.pathOf(key), id.left(40)));
    return kind;
}

HttpResponse refusal(const QString &reason) {
    return SyncService::errorResponse(400, QString::fromUtf8(kInvalidRenderRequest).arg(reason));
}

// The value of the form field "state" of an application/x-www-form-urlencoded body.
std::optional<QByteArray> formField(const std::string &body, const QString &name) {
    // Forms write blanks as "+", which QUrlQuery leaves as they are.
    QByteArray encoded = QByteArray::fromStdString(body);
    encoded.replace('+', "%20");
    const QUrlQuery query(QString::fromLatin1(encoded));
    if (!query.hasQueryItem(name))
        return std::nullopt;
    return query.queryItemValue(name, QUrl::FullyDecoded).toUtf8();
}

// Strict decoding of the JSON body; nothing, with the French reason in `error`, when it is
// not such a request.
std::optional<RenderRequest> decodeRenderRequest(const QByteArray &body, QString *error) {
    if (!body.isValidUtf8()) {
        *error = QStringLiteral("le corps n'est pas du texte UTF-8 valide");
        return std::nullopt;
    }
    const std::optional<QJsonObject> object = parseJsonObject(body, error);
    if (!object)
        return std::nullopt;
    JsonReader reader(*object, QString(), error);
    RenderRequest request;
    const QString active = reader.string(u"activePreset");
    if (reader.ok())
        if (const auto kind = readKind(reader, active, u"activePreset"))
            request.activePreset = *kind;
    request.data = MailComposerData::defaultRecord();
    if (reader.ok() && object->contains(QStringLiteral("data")))
        if (std::optional<MailComposerData> record = readRecord(reader, u"data"))
            request.data = std::move(*record);
    const std::optional<QString> apply = reader.optionalString(u"applyPreset");
    if (reader.ok() && apply) {
        if (const auto kind = readKind(reader, *apply, u"applyPreset")) {
            request.data.applyPreset(*kind);
            request.activePreset = *kind;
        }
    }
    if (!reader.ok())
        return std::nullopt;
    return request;
}

} // namespace

HttpResponse renderAnswer(const HttpRequest &request) {
    QString error;
    std::optional<RenderRequest> decoded =
        decodeRenderRequest(QByteArray::fromStdString(request.body), &error);
    if (!decoded)
        return refusal(error);
    const QJsonObject record = decoded->data.toJson();
    const QString active = presetId(decoded->activePreset);
    QJsonObject answer = renderedMailJson(MailTemplateContext(std::move(decoded->data)));
    answer.insert(QStringLiteral("activePreset"), active);
    answer.insert(QStringLiteral("record"), record);
    HttpResponse response;
    response.contentType = "application/json";
    response.body = QJsonDocument(answer).toJson(QJsonDocument::Compact).toStdString();
    return response;
}

HttpResponse previewAnswer(const HttpRequest &request) {
    const std::optional<QByteArray> state = formField(request.body, QStringLiteral("state"));
    if (!state)
        return refusal(QStringLiteral("champ \"state\" manquant"));
    QString error;
    std::optional<RenderRequest> decoded = decodeRenderRequest(*state, &error);
    if (!decoded)
        return refusal(error);
    HttpResponse response;
    response.contentType = "text/html; charset=utf-8";
    response.body =
        MailTemplateContext(std::move(decoded->data)).htmlDocument().toUtf8().toStdString();
    response.headers.emplace("Content-Security-Policy", kPreviewPolicy);
    return response;
}

} // namespace velino::server
