#include "custom_mail_preset.h"

#include "default_texts.h"
#include "identifiers.h"
#include "json_reader.h"
#include "record_readers.h"
#include "text.h"

#include <cmath>

namespace velino {

QString presetKindError(const QString &path, const QString &value) {
    return QStringLiteral("preset inconnu pour la cle %1 : \"%2\"").arg(path, value);
}

QString uuidError(const QString &path, const QString &value) {
    return QStringLiteral("UUID invalide pour la cle %1 : \"%2\"").arg(path, value);
}

QString timestampError(const QString &path, const QString &value) {
    return value.isNull() ? QStringLiteral("date invalide pour la cle %1").arg(path)
                          : QStringLiteral("date invalide pour la cle %1 : \"%2\" (forme "
                                           "aaaa-mm-jjThh:mm:ssZ attendue)")
                                .arg(path, value);
}

namespace {

Instant readTimestamp(JsonReader &reader, QStringView key, TimestampForm form) {
    if (form == TimestampForm::ReferenceSeconds) {
        const double seconds = reader.number(key);
        if (reader.ok() && !std::isfinite(seconds))
            reader.fail(timestampError(reader.pathOf(key), QString()));
        return Instant{seconds};
    }
    const QString text = reader.string(key);
    if (!reader.ok())
        return {};
    const std::optional<Instant> instant = parseIsoText(text);
    if (!instant) {
        reader.fail(timestampError(reader.pathOf(key), text));
        return {};
    }
    return *instant;
}

} // namespace

QString CustomMailPreset::subjectLine() const {
    const QString subject = text::trimmed(data.subject);
    return subject.isEmpty() ? texts::defaultSubject() : subject;
}

QJsonObject CustomMailPreset::toJson(TimestampForm form) const {
    const auto timestamp = [form](Instant instant) {
        return form == TimestampForm::Iso8601 ? QJsonValue(isoText(instant))
                                              : QJsonValue(instant.sinceReference);
    };
    return QJsonObject{{QStringLiteral("id"), uuidText(id)},
                       {QStringLiteral("name"), name},
                       {QStringLiteral("sourcePreset"), presetId(sourcePreset)},
                       {QStringLiteral("data"), data.toJson()},
                       {QStringLiteral("createdAt"), timestamp(createdAt)},
                       {QStringLiteral("updatedAt"), timestamp(updatedAt)}};
}

void CustomMailPreset::writeJson(JsonWriter &writer, TimestampForm form) const {
    const auto timestamp = [&writer, form](Instant instant) {
        if (form == TimestampForm::Iso8601)
            writer.string(isoText(instant));
        else
            writer.number(instant.sinceReference);
    };
    writer.beginObject();
    writer.key(u"id");
    writer.string(uuidText(id));
    writer.key(u"name");
    writer.string(name);
    writer.key(u"sourcePreset");
    writer.string(presetId(sourcePreset));
    writer.key(u"data");
    data.writeJson(writer);
    writer.key(u"createdAt");
    timestamp(createdAt);
    writer.key(u"updatedAt");
    timestamp(updatedAt);
    writer.endObject();
}

std::optional<CustomMailPreset> CustomMailPreset::fromJson(const QJsonObject &object,
                                                           TimestampForm form, const QString &path,
                                                           QString *error) {
    JsonReader reader(object, path, error);
    CustomMailPreset preset;
    const QString idText = reader.string(u"id");
    if (!reader.ok())
        return std::nullopt;
    const std::optional<QUuid> id = parseUuid(idText);
    if (!id) {
        reader.fail(uuidError(reader.pathOf(u"id"), idText));
        return std::nullopt;
    }
    preset.id = *id;
    preset.name = reader.string(u"name");
    const std::optional<PresetKind> kind = readPresetKind(reader, u"sourcePreset");
    std::optional<MailComposerData> data = readRecord(reader, u"data");
    preset.createdAt = readTimestamp(reader, u"createdAt", form);
    preset.updatedAt = readTimestamp(reader, u"updatedAt", form);
    if (!reader.ok())
        return std::nullopt;
    preset.sourcePreset = *kind;
    preset.data = std::move(*data);
    return preset;
}

bool CustomMailPreset::operator==(const CustomMailPreset &other) const {
    return id == other.id && text::canonicallyEqual(name, other.name) &&
           sourcePreset == other.sourcePreset && data == other.data &&
           createdAt == other.createdAt && updatedAt == other.updatedAt;
}

} // namespace velino
