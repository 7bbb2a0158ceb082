#include "record_readers.h"

#include "identifiers.h"

#include <QJsonArray>

namespace velino {

std::optional<PresetKind> readPresetKind(JsonReader &reader, QStringView key) {
    const QString text = reader.string(key);
    if (!reader.ok())
        return std::nullopt;
    const std::optional<PresetKind> kind = presetKindFromId(text);
    if (!kind)
        reader.fail(presetKindError(reader.pathOf(key), text));
    return kind;
}

std::optional<MailComposerData> readRecord(JsonReader &reader, QStringView key) {
    const QJsonObject object = reader.object(key);
    if (!reader.ok())
        return std::nullopt;
    QString error;
    std::optional<MailComposerData> record =
        MailComposerData::fromJson(object, reader.pathOf(key), &error);
    if (!record)
        reader.fail(error);
    return record;
}

std::optional<QList<CustomMailPreset>> readPresetList(JsonReader &reader, QStringView key,
                                                      TimestampForm form) {
    const QJsonArray items = reader.array(key);
    if (!reader.ok())
        return std::nullopt;
    QList<CustomMailPreset> presets;
    presets.reserve(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QString path = QStringLiteral("%1[%2]").arg(reader.pathOf(key)).arg(i);
        if (!items[i].isObject()) {
            reader.fail(wrongTypeMessage(path, "objet", jsonTypeName(items[i].type())));
            return std::nullopt;
        }
        QString error;
        std::optional<CustomMailPreset> preset =
            CustomMailPreset::fromJson(items[i].toObject(), form, path, &error);
        if (!preset) {
            reader.fail(error);
            return std::nullopt;
        }
        presets.append(std::move(*preset));
    }
    return presets;
}

std::optional<QUuid> readOptionalUuid(JsonReader &reader, QStringView key) {
    const std::optional<QString> text = reader.optionalString(key);
    if (!text)
        return std::nullopt;
    const std::optional<QUuid> id = parseUuid(*text);
    if (!id)
        reader.fail(uuidError(reader.pathOf(key), *text));
    return id;
}

} // namespace velino
