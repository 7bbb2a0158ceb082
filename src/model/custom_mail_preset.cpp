#include "custom_mail_preset.h"

#include "default_texts.h"
#include "identifiers.h"
#include "json_reader.h"
#include "record_readers.h"
#include "text.h"

#include <QJsonDocument>

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
    JsonWriter writer;
    writeJson(writer, form);
    return QJsonDocument::fromJson(writer.take()).object();
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

std::optional<CustomMailPreset> CustomMailPreset::fromJson(JsonCursor &cursor, TimestampForm form,
                                                           const QString &path, QString *error) {
    const auto pathOf = [&path](QStringView key) { return MemberPath{path, key}; };
    const auto readTimestampMember = [&](QStringView key, Instant *instant) {
        const MemberPath keyPath = pathOf(key);
        if (form == TimestampForm::ReferenceSeconds) {
            if (!checkMemberType(cursor, JsonCursor::Type::Number, "nombre", keyPath, error))
                return false;
            if (!cursor.readNumber(&instant->sinceReference)) {
                *error = cursor.error();
                return false;
            }
            return true;
        }
        QString text;
        if (!readStringMember(cursor, keyPath, &text, error))
            return false;
        const std::optional<Instant> parsed = parseIsoText(text);
        if (!parsed) {
            *error = timestampError(keyPath.toString(), text);
            return false;
        }
        *instant = *parsed;
        return true;
    };

    if (!checkMemberType(cursor, JsonCursor::Type::Object, "objet", MemberPath{QStringView(), path},
                         error) ||
        !cursor.beginObject())
        return std::nullopt;
    CustomMailPreset preset;
    enum Key { Id, Name, Source, Data, Created, Updated, KeyCount };
    static const char16_t *const names[KeyCount] = {u"id",   u"name",      u"sourcePreset",
                                                    u"data", u"createdAt", u"updatedAt"};
    bool found[KeyCount] = {};
    QByteArrayView key;
    while (cursor.nextMember(&key)) {
        int index = 0;
        while (index < KeyCount && QLatin1StringView(key) != QStringView(names[index]))
            ++index;
        bool read = true;
        switch (index) {
        case Id: {
            QString text;
            read = readStringMember(cursor, pathOf(u"id"), &text, error);
            const std::optional<QUuid> id = read ? parseUuid(text) : std::nullopt;
            if (read && !id) {
                *error = uuidError(pathOf(u"id").toString(), text);
                read = false;
            }
            preset.id = id.value_or(QUuid());
            break;
        }
        case Name:
            read = readStringMember(cursor, pathOf(u"name"), &preset.name, error);
            break;
        case Source: {
            QString text;
            read = readStringMember(cursor, pathOf(u"sourcePreset"), &text, error);
            const std::optional<PresetKind> kind = read ? presetKindFromId(text) : std::nullopt;
            if (read && !kind) {
                *error = presetKindError(pathOf(u"sourcePreset").toString(), text);
                read = false;
            }
            preset.sourcePreset = kind.value_or(PresetKind::Devis);
            break;
        }
        case Data: {
            std::optional<MailComposerData> data =
                MailComposerData::fromJson(cursor, pathOf(u"data").toString(), error);
            read = data.has_value();
            if (data)
                preset.data = std::move(*data);
            break;
        }
        case Created:
            read = readTimestampMember(u"createdAt", &preset.createdAt);
            break;
        case Updated:
            read = readTimestampMember(u"updatedAt", &preset.updatedAt);
            break;
        default:
            if (!cursor.skipValue()) {
                *error = cursor.error();
                return std::nullopt;
            }
            continue;
        }
        if (!read)
            return std::nullopt;
        found[index] = true;
    }
    if (!cursor.ok()) {
        *error = cursor.error();
        return std::nullopt;
    }
    for (int i = 0; i < KeyCount; ++i) {
        if (!found[i]) {
            *error = missingKeyMessage(pathOf(names[i]).toString());
            return std::nullopt;
        }
    }
    return preset;
}

bool CustomMailPreset::operator==(const CustomMailPreset &other) const {
    return id == other.id && text::canonicallyEqual(name, other.name) &&
           sourcePreset == other.sourcePreset && data == other.data &&
           createdAt == other.createdAt && updatedAt == other.updatedAt;
}

} // namespace velino
