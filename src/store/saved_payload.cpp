#include "saved_payload.h"

#include "identifiers.h"
#include "json_cursor.h"
#include "json_reader.h"

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
    // The saved state can hold thousands of presets: it is read in one streamed pass.
    JsonCursor cursor(bytes);
    const auto syntaxError = [&]() {
        *error = cursor.error();
        return std::nullopt;
    };
    if (cursor.peek() != JsonCursor::Type::Object) {
        if (cursor.ok())
            cursor.fail("un objet est attendu");
        return syntaxError();
    }
    cursor.beginObject();

    SavedPayload payload;
    bool hasPreset = false;
    bool hasData = false;
    // The four optional keys may be missing or null.
    const auto optionalString = [&](QStringView key, QString *value) {
        if (cursor.peek() == JsonCursor::Type::Null)
            return cursor.readNull();
        return readStringMember(cursor, MemberPath{QStringView(), key}, value, error);
    };
    QByteArrayView key;
    while (cursor.nextMember(&key)) {
        bool read = true;
        if (key == "preset") {
            QString text;
            read = readStringMember(cursor, MemberPath{QStringView(), u"preset"}, &text, error);
            const std::optional<PresetKind> kind = read ? presetKindFromId(text) : std::nullopt;
            if (read && !kind) {
                *error = presetKindError(QStringLiteral("preset"), text);
                read = false;
            }
            payload.preset = kind.value_or(PresetKind::Devis);
            hasPreset = read;
        } else if (key == "data") {
            std::optional<MailComposerData> data =
                MailComposerData::fromJson(cursor, QStringLiteral("data"), error);
            read = data.has_value();
            if (data)
                payload.data = std::move(*data);
            hasData = read;
        } else if (key == "smtpLoginEmail") {
            read = optionalString(u"smtpLoginEmail", &payload.smtpLoginEmail);
        } else if (key == "customPresetDraftName") {
            read = optionalString(u"customPresetDraftName", &payload.customPresetDraftName);
        } else if (key == "activeCustomPresetID") {
            QString text;
            read = optionalString(u"activeCustomPresetID", &text);
            payload.activeCustomPresetID.reset();
            if (read && !text.isNull()) {
                payload.activeCustomPresetID = parseUuid(text);
                if (!payload.activeCustomPresetID) {
                    *error = uuidError(QStringLiteral("activeCustomPresetID"), text);
                    read = false;
                }
            }
        } else if (key == "customPresets") {
            payload.customPresets.clear();
            if (cursor.peek() == JsonCursor::Type::Null) {
                read = cursor.readNull();
            } else if ((read =
                            checkMemberType(cursor, JsonCursor::Type::Array, "tableau",
                                            MemberPath{QStringView(), u"customPresets"}, error))) {
                cursor.beginArray();
                for (qsizetype i = 0; read && cursor.nextElement(); ++i) {
                    std::optional<CustomMailPreset> preset = CustomMailPreset::fromJson(
                        cursor, TimestampForm::ReferenceSeconds,
                        QStringLiteral("customPresets[%1]").arg(i), error);
                    read = preset.has_value();
                    if (preset)
                        payload.customPresets.append(std::move(*preset));
                }
            }
        } else {
            read = cursor.skipValue();
        }
        if (!read)
            return cursor.ok() ? std::nullopt : syntaxError();
    }
    if (!cursor.finish())
        return syntaxError();
    if (!hasPreset) {
        *error = missingKeyMessage(QStringLiteral("preset"));
        return std::nullopt;
    }
    if (!hasData) {
        *error = missingKeyMessage(QStringLiteral("data"));
        return std::nullopt;
    }
    return payload;
}

} // namespace velino
