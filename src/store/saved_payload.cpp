#include "saved_payload.h"

#include "identifiers.h"
#include "json_reader.h"
#include "record_readers.h"

namespace velino {

QByteArray SavedPayload::toJson() const {
    JsonWriter writer(4096 + customPresets.size() * 2560);
    writer.beginObject();
    writer.key(u"preset");
    writer.string(presetId(preset));
    writer.key(u"data");
    data.writeJson(writer);
    writer.key(u"smtpLoginEmail");
    writer.string(smtpLoginEmail);
    writer.key(u"customPresets");
    writer.beginArray();
    for (const CustomMailPreset &custom : customPresets)
        custom.writeJson(writer, TimestampForm::ReferenceSeconds);
    writer.endArray();
    if (activeCustomPresetID) {
        writer.key(u"activeCustomPresetID");
        writer.string(uuidText(*activeCustomPresetID));
    }
    writer.key(u"customPresetDraftName");
    writer.string(customPresetDraftName);
    writer.endObject();
    return writer.take();
}

std::optional<SavedPayload> SavedPayload::fromJson(const QByteArray &bytes, QString *error) {
    error->clear();
    const std::optional<QJsonObject> object = parseJsonObject(bytes, error);
    if (!object)
        return std::nullopt;
    JsonReader reader(*object, QString(), error);
    SavedPayload payload;
    const std::optional<PresetKind> preset = readPresetKind(reader, u"preset");
    std::optional<MailComposerData> data = readRecord(reader, u"data");
    // The four other keys may be missing or null.
    payload.smtpLoginEmail = reader.optionalString(u"smtpLoginEmail").value_or(QString());
    if (reader.optionalArray(u"customPresets")) {
        std::optional<QList<CustomMailPreset>> presets =
            readPresetList(reader, u"customPresets", TimestampForm::ReferenceSeconds);
        if (presets)
            payload.customPresets = std::move(*presets);
    }
    payload.activeCustomPresetID = readOptionalUuid(reader, u"activeCustomPresetID");
    payload.customPresetDraftName =
        reader.optionalString(u"customPresetDraftName").value_or(QString());
    if (!reader.ok())
        return std::nullopt;
    payload.preset = *preset;
    payload.data = std::move(*data);
    return payload;
}

} // namespace velino
