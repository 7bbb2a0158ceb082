#include "identifiers.h"
#include "sync_client.h"
#include "sync_records.h"
#include "test_records.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

CustomMailPreset samplePreset() {
    CustomMailPreset p;
    p.id = randomUuid();
    p.name = "Relance tablette";
    p.sourcePreset = PresetKind::Relance;
    p.data = test::defaultWith(u"subject", "Votre tablette vous attend");
    p.createdAt = Instant{788918400.0};
    p.updatedAt = Instant{788918460.0};
    return p;
}

// A download answer as the web interface writes it, with one saved preset inside.
QJsonObject downloadAnswer() {
    VelinoSyncDownloadResponse response;
    response.ok = true;
    response.snapshot.updatedAt = "2026-06-05T08:15:00Z";
    VelinoSyncPayload &payload = response.snapshot.payload;
    payload = VelinoSyncPayload::forSending(
        PresetKind::Pret, test::defaultWith(u"recipientName", "Lea Martin"), Instant{788918400.0});
    payload.source = "web";
    payload.customPresets.append(samplePreset());
    payload.customPresetDraftName = "Brouillon iPhone";
    return response.toJson();
}

QJsonObject payloadOf(const QJsonObject &answer) {
    return answer["snapshot"].toObject()["payload"].toObject();
}

// The answer with its payload changed by edit.
template <typename Edit> QJsonObject withPayload(QJsonObject answer, Edit edit) {
    QJsonObject snapshot = answer["snapshot"].toObject();
    QJsonObject payload = snapshot["payload"].toObject();
    edit(payload);
    snapshot["payload"] = payload;
    answer["snapshot"] = snapshot;
    return answer;
}

QByteArray bytes(const QJsonObject &object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

// The decoding error of a download answer, empty when it decodes.
QString downloadError(const QByteArray &body) {
    QString error;
    const auto decoded = decodeSyncRecord<VelinoSyncDownloadResponse>(body, &error);
    EXPECT_EQ(decoded.has_value(), error.isEmpty()) << error.toStdString();
    return error;
}

} // namespace

TEST(SyncRecords, UploadBodyCarriesOnlyThePresetAndTheContentCompactly) {
    const MailComposerData data = test::defaultWith(u"mailBody", "Ligne 1\nLigne 2 \"citee\"");
    const QByteArray body =
        syncUploadBody("AB12-CD34EF56GH78", PresetKind::Rdv, data, Instant{788918461.75});
    EXPECT_FALSE(body.contains('\n'));
    EXPECT_FALSE(body.contains("\": "));

    QString error;
    const std::optional<QJsonObject> upload = parseJsonObject(body, &error);
    ASSERT_TRUE(upload.has_value()) << error.toStdString();
    EXPECT_EQ(upload->keys(), (QStringList{"code", "payload"}));
    EXPECT_EQ((*upload)["code"].toString(), "AB12-CD34EF56GH78");
    const QJsonObject json = (*upload)["payload"].toObject();
    EXPECT_EQ(json.keys(), (QStringList{"activePreset", "customPresetDraftName", "customPresets",
                                        "data", "schema", "source", "updatedAt", "version"}));
    EXPECT_EQ(json["schema"].toString(), "korvel-velino-sync");
    EXPECT_EQ(json["version"].toVariant().typeId(), QMetaType::LongLong);
    EXPECT_EQ(json["version"].toInteger(), 1);
    EXPECT_EQ(json["activePreset"].toString(), "rdv");
    EXPECT_EQ(json["data"].toObject(), data.toJson());
    EXPECT_EQ(json["customPresets"].toArray(), QJsonArray());
    EXPECT_EQ(json["customPresetDraftName"].toString(), "");
    // Whole seconds in UTC, the fraction dropped.
    EXPECT_EQ(json["updatedAt"].toString(), "2026-01-01T00:01:01Z");
    EXPECT_EQ(json["source"].toString(), "macos");
}

TEST(SyncRecords, AllRecordsRoundTrip) {
    QString error;

    const QJsonObject answer = downloadAnswer();
    const auto download = decodeSyncRecord<VelinoSyncDownloadResponse>(bytes(answer), &error);
    ASSERT_TRUE(download.has_value()) << error.toStdString();
    EXPECT_EQ(download->toJson(), answer);
    ASSERT_EQ(download->snapshot.payload.customPresets.size(), 1);
    const CustomMailPreset &preset = download->snapshot.payload.customPresets.first();
    EXPECT_EQ(preset.name, "Relance tablette");
    EXPECT_EQ(preset.updatedAt, Instant{788918460.0});

    VelinoSyncPayload withActive = download->snapshot.payload;
    withActive.activeCustomPresetID = preset.id;
    const QJsonObject withActiveJson = withActive.toJson();
    EXPECT_EQ(withActiveJson["activeCustomPresetID"].toString(), uuidText(preset.id));
    const auto payload = decodeSyncRecord<VelinoSyncPayload>(bytes(withActiveJson), &error);
    ASSERT_TRUE(payload.has_value()) << error.toStdString();
    EXPECT_EQ(payload->activeCustomPresetID, preset.id);
    EXPECT_EQ(payload->toJson(), withActiveJson);

    const VelinoSyncUploadResponse uploadAnswer{true, "2026-06-05T08:15:00Z"};
    const auto decodedUploadAnswer =
        decodeSyncRecord<VelinoSyncUploadResponse>(encodeSyncRecord(uploadAnswer), &error);
    ASSERT_TRUE(decodedUploadAnswer.has_value()) << error.toStdString();
    EXPECT_TRUE(decodedUploadAnswer->ok);
    EXPECT_EQ(decodedUploadAnswer->updatedAt, uploadAnswer.updatedAt);

    const VelinoSyncErrorResponse refusal{"Code inconnu"};
    EXPECT_EQ(encodeSyncRecord(refusal), "{\"error\":\"Code inconnu\"}");
    const auto decodedRefusal =
        decodeSyncRecord<VelinoSyncErrorResponse>(encodeSyncRecord(refusal), &error);
    ASSERT_TRUE(decodedRefusal.has_value()) << error.toStdString();
    EXPECT_EQ(decodedRefusal->error, "Code inconnu");
}

TEST(SyncRecords, DownloadAnswerFailsOnAnyMissingNullOrMistypedKey) {
    const QJsonObject answer = downloadAnswer();
    ASSERT_EQ(downloadError(bytes(answer)), "");

    QJsonObject noOk = answer;
    noOk.remove("ok");
    EXPECT_EQ(downloadError(bytes(noOk)), "cle manquante : ok");

    QJsonObject okAsText = answer;
    okAsText["ok"] = "true";
    EXPECT_EQ(downloadError(bytes(okAsText)),
              "type incorrect pour la cle ok : booleen attendu, texte trouve");

    QJsonObject snapshotNull = answer;
    snapshotNull["snapshot"] = QJsonValue::Null;
    EXPECT_EQ(downloadError(bytes(snapshotNull)), "valeur null pour la cle snapshot");

    // Neither is applied, both are required.
    EXPECT_EQ(downloadError(bytes(
                  withPayload(answer, [](QJsonObject &p) { p.remove("customPresetDraftName"); }))),
              "cle manquante : snapshot.payload.customPresetDraftName");
    EXPECT_EQ(downloadError(
                  bytes(withPayload(answer, [](QJsonObject &p) { p.remove("customPresets"); }))),
              "cle manquante : snapshot.payload.customPresets");

    EXPECT_EQ(downloadError(bytes(
                  withPayload(answer, [](QJsonObject &p) { p["schema"] = QJsonValue::Null; }))),
              "valeur null pour la cle snapshot.payload.schema");
    EXPECT_EQ(downloadError(bytes(withPayload(answer, [](QJsonObject &p) { p["version"] = "1"; }))),
              "type incorrect pour la cle snapshot.payload.version : nombre entier attendu, "
              "texte trouve");
    EXPECT_EQ(downloadError(bytes(withPayload(answer, [](QJsonObject &p) { p["version"] = 1.5; }))),
              "type incorrect pour la cle snapshot.payload.version : nombre entier attendu");
    EXPECT_EQ(downloadError(
                  bytes(withPayload(answer, [](QJsonObject &p) { p["activePreset"] = "promo"; }))),
              "preset inconnu pour la cle snapshot.payload.activePreset : \"promo\"");
    EXPECT_EQ(downloadError(bytes(withPayload(answer,
                                              [](QJsonObject &p) {
                                                  QJsonObject data = p["data"].toObject();
                                                  data.remove("senderPhone");
                                                  p["data"] = data;
                                              }))),
              "cle manquante : snapshot.payload.data.senderPhone");
    EXPECT_EQ(downloadError(bytes(withPayload(
                  answer, [](QJsonObject &p) { p["customPresets"] = QJsonArray{"x"}; }))),
              "type incorrect pour la cle snapshot.payload.customPresets[0] : objet attendu, "
              "texte trouve");
    EXPECT_EQ(downloadError(bytes(withPayload(answer, [](QJsonObject &p) { p["source"] = 2; }))),
              "type incorrect pour la cle snapshot.payload.source : texte attendu, nombre trouve");
    EXPECT_EQ(downloadError(bytes(
                  withPayload(answer, [](QJsonObject &p) { p["activeCustomPresetID"] = "123"; }))),
              "UUID invalide pour la cle snapshot.payload.activeCustomPresetID : \"123\"");
    EXPECT_EQ(downloadError(bytes(
                  withPayload(answer, [](QJsonObject &p) { p["activeCustomPresetID"] = true; }))),
              "type incorrect pour la cle snapshot.payload.activeCustomPresetID : texte attendu, "
              "booleen trouve");
}

TEST(SyncRecords, PresetTimestampsMustBeWholeSecondsWithAZone) {
    const QJsonObject answer = downloadAnswer();
    const auto withCreatedAt = [&](const QString &text) {
        return bytes(withPayload(answer, [&](QJsonObject &p) {
            QJsonObject preset = p["customPresets"].toArray().first().toObject();
            preset["createdAt"] = text;
            p["customPresets"] = QJsonArray{preset};
        }));
    };
    EXPECT_EQ(downloadError(withCreatedAt("2026-06-05T08:15:00.250Z")),
              "date invalide pour la cle snapshot.payload.customPresets[0].createdAt : "
              "\"2026-06-05T08:15:00.250Z\" (forme aaaa-mm-jjThh:mm:ssZ attendue)");
    EXPECT_NE(downloadError(withCreatedAt("2026-06-05T08:15:00")), "");
    EXPECT_NE(downloadError(withCreatedAt("2026-06-05")), "");
    EXPECT_NE(downloadError(withCreatedAt("788918400")), "");

    QString error;
    const auto offset = decodeSyncRecord<VelinoSyncDownloadResponse>(
        withCreatedAt("2026-01-01T02:00:00+02:00"), &error);
    ASSERT_TRUE(offset.has_value()) << error.toStdString();
    EXPECT_EQ(offset->snapshot.payload.customPresets.first().createdAt, Instant{788918400.0});
}

TEST(SyncRecords, OptionalActivePresetAndIgnoredFieldsDoNotBlockADownload) {
    const QJsonObject answer = downloadAnswer();
    QString error;

    const auto missing = decodeSyncRecord<VelinoSyncDownloadResponse>(bytes(answer), &error);
    ASSERT_TRUE(missing.has_value()) << error.toStdString();
    EXPECT_FALSE(missing->snapshot.payload.activeCustomPresetID.has_value());

    const auto null = decodeSyncRecord<VelinoSyncDownloadResponse>(
        bytes(withPayload(answer,
                          [](QJsonObject &p) { p["activeCustomPresetID"] = QJsonValue::Null; })),
        &error);
    ASSERT_TRUE(null.has_value()) << error.toStdString();
    EXPECT_FALSE(null->snapshot.payload.activeCustomPresetID.has_value());

    const QUuid id = randomUuid();
    const auto lowerCase = decodeSyncRecord<VelinoSyncDownloadResponse>(
        bytes(withPayload(
            answer, [&](QJsonObject &p) { p["activeCustomPresetID"] = uuidText(id).toLower(); })),
        &error);
    ASSERT_TRUE(lowerCase.has_value()) << error.toStdString();
    EXPECT_EQ(lowerCase->snapshot.payload.activeCustomPresetID, id);

    // Another format, a refused flag, an unknown key: read all the same, and applied.
    QJsonObject odd = withPayload(answer, [](QJsonObject &p) {
        p["schema"] = "autre-format";
        p["version"] = 7;
        p["extra"] = QJsonArray{1, 2};
    });
    odd["ok"] = false;
    const auto download = decodeSyncDownload(bytes(odd), &error);
    ASSERT_TRUE(download.has_value()) << error.toStdString();
    EXPECT_EQ(download->activePreset, PresetKind::Pret);
    EXPECT_EQ(download->data.recipientName, "Lea Martin");
    EXPECT_TRUE(download->data == test::defaultWith(u"recipientName", "Lea Martin"));
    // The snapshot's time, not the payload's.
    EXPECT_EQ(download->updatedAt, "2026-06-05T08:15:00Z");
    EXPECT_EQ(payloadOf(odd)["updatedAt"].toString(), "2026-01-01T00:00:00Z");
}

TEST(SyncRecords, UploadAnswerKeepsItsTimeAsPlainText) {
    QString error;
    const auto notATime =
        decodeSyncUploadAnswer("{\"ok\":true,\"updatedAt\":\"hier soir\"}", &error);
    ASSERT_TRUE(notATime.has_value()) << error.toStdString();
    EXPECT_EQ(*notATime, "hier soir");

    const auto refusedFlag =
        decodeSyncUploadAnswer("{\"ok\":false,\"updatedAt\":\"2026-06-05T08:15:00.5Z\"}", &error);
    ASSERT_TRUE(refusedFlag.has_value()) << error.toStdString();
    EXPECT_EQ(*refusedFlag, "2026-06-05T08:15:00.5Z");

    EXPECT_FALSE(decodeSyncUploadAnswer("{\"updatedAt\":\"x\"}", &error).has_value());
    EXPECT_EQ(error, "cle manquante : ok");
    EXPECT_FALSE(decodeSyncUploadAnswer("{\"ok\":1,\"updatedAt\":\"x\"}", &error).has_value());
    EXPECT_EQ(error, "type incorrect pour la cle ok : booleen attendu, nombre trouve");
    EXPECT_FALSE(decodeSyncUploadAnswer("{\"ok\":true,\"updatedAt\":null}", &error).has_value());
    EXPECT_EQ(error, "valeur null pour la cle updatedAt");
}

TEST(SyncRecords, BodiesThatAreNotOneJsonObjectFail) {
    QString error;
    EXPECT_FALSE(decodeSyncDownload("<html>oops</html>", &error).has_value());
    EXPECT_TRUE(error.startsWith("JSON invalide a l'octet ")) << error.toStdString();
    EXPECT_FALSE(decodeSyncDownload("[1,2]", &error).has_value());
    EXPECT_EQ(error, "JSON invalide : un objet est attendu");
    EXPECT_FALSE(decodeSyncDownload("", &error).has_value());
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(decodeSyncDownload(QByteArray("{\"ok\":tr\xff}", 11), &error).has_value());
    EXPECT_FALSE(error.isEmpty());

    // A stale message from an earlier call does not count as a failure.
    error = "ancienne erreur";
    const auto refusal = decodeSyncRecord<VelinoSyncErrorResponse>("{\"error\":\"\"}", &error);
    ASSERT_TRUE(refusal.has_value()) << error.toStdString();
    EXPECT_EQ(refusal->error, "");
    EXPECT_FALSE(decodeSyncRecord<VelinoSyncErrorResponse>("{\"error\":3}", &error).has_value());
    EXPECT_EQ(error, "type incorrect pour la cle error : texte attendu, nombre trouve");
}
