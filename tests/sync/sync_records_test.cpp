#include "identifiers.h"
#include "sync_records.h"
#include "test_records.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

// What the store never shows (the phone's saved presets are read, then left aside) but the
// decoder must still read right. Its refusals are checked through a store pulling them.
TEST(SyncRecords, DownloadAnswerRoundTripsWithItsSavedPresets) {
    const CustomMailPreset preset{
        randomUuid(),         "Relance tablette",
        PresetKind::Relance,  test::defaultWith(u"subject", "Votre tablette vous attend"),
        Instant{788918400.0}, Instant{788918460.0}};

    VelinoSyncDownloadResponse response;
    response.ok = true;
    response.snapshot.updatedAt = "2026-06-05T08:15:00Z";
    VelinoSyncPayload &payload = response.snapshot.payload;
    payload = VelinoSyncPayload::forSending(
        PresetKind::Pret, test::defaultWith(u"recipientName", "Lea Martin"), Instant{788918400.0});
    payload.customPresets.append(preset);
    payload.activeCustomPresetID = preset.id;
    const QJsonObject answer = response.toJson();
    const auto bytes = [](const QJsonObject &o) { return QJsonDocument(o).toJson(); };

    QString error;
    const auto decoded = decodeSyncRecord<VelinoSyncDownloadResponse>(bytes(answer), &error);
    ASSERT_TRUE(decoded.has_value()) << error.toStdString();
    EXPECT_EQ(decoded->toJson(), answer);
    EXPECT_TRUE(decoded->snapshot.payload.customPresets.value(0) == preset);

    // A lower-case identifier and a time with an offset name the same values.
    QJsonObject json = answer["snapshot"]["payload"].toObject();
    json["activeCustomPresetID"] = uuidText(preset.id).toLower();
    QJsonObject presetJson = json["customPresets"][0].toObject();
    presetJson["createdAt"] = "2026-01-01T02:00:00+02:00";
    json["customPresets"] = QJsonArray{presetJson};
    const auto offset = decodeSyncRecord<VelinoSyncPayload>(bytes(json), &error);
    ASSERT_TRUE(offset.has_value()) << error.toStdString();
    EXPECT_EQ(offset->activeCustomPresetID, preset.id);
    EXPECT_EQ(offset->customPresets.value(0).createdAt, Instant{788918400.0});
}
