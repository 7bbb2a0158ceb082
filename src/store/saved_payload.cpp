#include "saved_payload.h"

#include "identifiers.h"
#include "json_reader.h"

#include <QJsonArray>
#include <QJsonDocument>

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
    const std::optional<QJsonObject> object = parseJsonObject(bytes, error);
    if (!object)
        return std::nullopt;
    JsonReader reader(*object, QString(), error);
    SavedPayload payload;

    const QString presetText = reader.string(u"preset");
    if (!reader.ok())
        return std::nullopt;
    const std::optional<PresetKind> kind = presetKindFromId(presetText);
    if (!kind) {
        reader.fail(presetKindError(QStringLiteral("preset"), presetText));
        return std::nullopt;
    }
    payload.preset = *kind;

    const QJsonObject dataObject = reader.object(u"data");
    if (!reader.ok())
        return std::nullopt;
    std::optional<MailComposerData> data =
        MailComposerData::fromJson(dataObject, QStringLiteral("data"), error);
    if (!data)
        return std::nullopt;
    payload.data = std::move(*data);

    payload.smtpLoginEmail = reader.optionalString(u"smtpLoginEmail").value_or(QString());
    const QJsonArray presets = reader.optionalArray(u"customPresets").value_or(QJsonArray());
    const std::optional<QString> activeId = reader.optionalString(u"activeCustomPresetID");
    payload.customPresetDraftName =
        reader.optionalString(u"customPresetDraftName").value_or(QString());
    if (!reader.ok())
        return std::nullopt;

    if (activeId) {
        payload.activeCustomPresetID = parseUuid(*activeId);
        if (!payload.activeCustomPresetID) {
            reader.fail(QStringLiteral("UUID invalide pour la cle activeCustomPresetID : \"%1\"")
                            .arg(*activeId));
            return std::nullopt;
        }
    }

    payload.customPresets.reserve(presets.size());
    for (qsizetype i = 0; i < presets.size(); ++i) {
        const QString path = QStringLiteral("customPresets[%1]").arg(i);
        if (!presets[i].isObject()) {
            reader.fail(QStringLiteral("type incorrect pour la cle %1 : objet attendu").arg(path));
            return std::nullopt;
        }
        std::optional<CustomMailPreset> preset = CustomMailPreset::fromJson(
            presets[i].toObject(), TimestampForm::ReferenceSeconds, path, error);
        if (!preset)
            return std::nullopt;
        payload.customPresets.append(std::move(*preset));
    }
    return payload;
}

} // namespace velino
