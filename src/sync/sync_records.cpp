#include "sync_records.h"

#include "identifiers.h"
#include "record_readers.h"

#include <QJsonArray>

namespace velino {
namespace {

std::optional<VelinoSyncPayload> readPayload(JsonReader &reader, QStringView key, QString *error) {
    const QJsonObject object = reader.object(key);
    if (!reader.ok())
        return std::nullopt;
    return VelinoSyncPayload::fromJson(object, reader.pathOf(key), error);
}

} // namespace

VelinoSyncPayload VelinoSyncPayload::forSending(PresetKind activePreset,
                                                const MailComposerData &data, Instant now) {
    VelinoSyncPayload payload;
    payload.schema = syncSchemaName();
    payload.version = kSyncFormatVersion;
    payload.activePreset = activePreset;
    payload.data = data;
    payload.updatedAt = isoText(now);
    payload.source = syncSourceName();
    return payload;
}

QJsonObject VelinoSyncPayload::toJson() const {
    QJsonArray presets;
    for (const CustomMailPreset &preset : customPresets)
        presets.append(preset.toJson(TimestampForm::Iso8601));
    QJsonObject object{{QStringLiteral("schema"), schema},
                       {QStringLiteral("version"), version},
                       {QStringLiteral("activePreset"), presetId(activePreset)},
                       {QStringLiteral("data"), data.toJson()},
                       {QStringLiteral("customPresets"), presets},
                       {QStringLiteral("customPresetDraftName"), customPresetDraftName},
                       {QStringLiteral("updatedAt"), updatedAt},
                       {QStringLiteral("source"), source}};
    if (activeCustomPresetID)
        object.insert(QStringLiteral("activeCustomPresetID"), uuidText(*activeCustomPresetID));
    return object;
}

std::optional<VelinoSyncPayload> VelinoSyncPayload::fromJson(const QJsonObject &object,
                                                             const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncPayload payload;
    payload.schema = reader.string(u"schema");
    payload.version = reader.integer(u"version");
    const std::optional<PresetKind> kind = readPresetKind(reader, u"activePreset");
    std::optional<MailComposerData> data = readRecord(reader, u"data");
    std::optional<QList<CustomMailPreset>> presets =
        readPresetList(reader, u"customPresets", TimestampForm::Iso8601);
    payload.activeCustomPresetID = readOptionalUuid(reader, u"activeCustomPresetID");
    payload.customPresetDraftName = reader.string(u"customPresetDraftName");
    payload.updatedAt = reader.string(u"updatedAt");
    payload.source = reader.string(u"source");
    if (!reader.ok())
        return std::nullopt;
    payload.activePreset = *kind;
    payload.data = std::move(*data);
    payload.customPresets = std::move(*presets);
    return payload;
}

QJsonObject VelinoSyncUpload::toJson() const {
    return QJsonObject{{QStringLiteral("code"), code},
                       {QStringLiteral("payload"), payload.toJson()}};
}

std::optional<VelinoSyncUpload> VelinoSyncUpload::fromJson(const QJsonObject &object,
                                                           const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncUpload upload;
    upload.code = reader.string(u"code");
    std::optional<VelinoSyncPayload> payload = readPayload(reader, u"payload", error);
    if (!payload)
        return std::nullopt;
    upload.payload = std::move(*payload);
    return upload;
}

QJsonObject VelinoSyncUploadResponse::toJson() const {
    return QJsonObject{{QStringLiteral("ok"), ok}, {QStringLiteral("updatedAt"), updatedAt}};
}

std::optional<VelinoSyncUploadResponse>
VelinoSyncUploadResponse::fromJson(const QJsonObject &object, const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncUploadResponse response;
    response.ok = reader.boolean(u"ok");
    response.updatedAt = reader.string(u"updatedAt");
    if (!reader.ok())
        return std::nullopt;
    return response;
}

QJsonObject VelinoSyncSnapshot::toJson() const {
    return QJsonObject{{QStringLiteral("updatedAt"), updatedAt},
                       {QStringLiteral("payload"), payload.toJson()}};
}

std::optional<VelinoSyncSnapshot>
VelinoSyncSnapshot::fromJson(const QJsonObject &object, const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncSnapshot snapshot;
    snapshot.updatedAt = reader.string(u"updatedAt");
    std::optional<VelinoSyncPayload> payload = readPayload(reader, u"payload", error);
    if (!payload)
        return std::nullopt;
    snapshot.payload = std::move(*payload);
    return snapshot;
}

QJsonObject VelinoSyncDownloadResponse::toJson() const {
    return QJsonObject{{QStringLiteral("ok"), ok}, {QStringLiteral("snapshot"), snapshot.toJson()}};
}

std::optional<VelinoSyncDownloadResponse>
VelinoSyncDownloadResponse::fromJson(const QJsonObject &object, const QString &path,
                                     QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncDownloadResponse response;
    response.ok = reader.boolean(u"ok");
    const QJsonObject snapshotObject = reader.object(u"snapshot");
    if (!reader.ok())
        return std::nullopt;
    std::optional<VelinoSyncSnapshot> snapshot =
        VelinoSyncSnapshot::fromJson(snapshotObject, reader.pathOf(u"snapshot"), error);
    if (!snapshot)
        return std::nullopt;
    response.snapshot = std::move(*snapshot);
    return response;
}

QJsonObject VelinoSyncErrorResponse::toJson() const {
    return QJsonObject{{QStringLiteral("error"), error}};
}

std::optional<VelinoSyncErrorResponse>
VelinoSyncErrorResponse::fromJson(const QJsonObject &object, const QString &path, QString *error) {
    JsonReader reader(object, path, error);
    VelinoSyncErrorResponse response;
    response.error = reader.string(u"error");
    if (!reader.ok())
        return std::nullopt;
    return response;
}

} // namespace velino
