#pragma once

#include "instant.h"
#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>

#include <optional>

namespace velino {

// How the enclosing document writes timestamps: seconds since 2001-01-01 UTC as a
// number (local saved state), or internet date-time text (sync format).
enum class TimestampForm { ReferenceSeconds, Iso8601 };

// A named snapshot of the whole content, saved by the user.
struct CustomMailPreset {
    QUuid id;
    QString name;
    PresetKind sourcePreset = PresetKind::Devis;
    MailComposerData data;
    Instant createdAt;
    Instant updatedAt;

    // The trimmed subject of the content, or the default subject when it is blank.
    QString subjectLine() const;

    QJsonObject toJson(TimestampForm form) const;
    void writeJson(JsonWriter &writer, TimestampForm form) const;
    static std::optional<CustomMailPreset> fromJson(const QJsonObject &object, TimestampForm form,
                                                    const QString &path, QString *error);

    bool operator==(const CustomMailPreset &other) const;
};

// The messages of an unknown preset identifier, a malformed UUID and a timestamp of the
// wrong form found under path.
QString presetKindError(const QString &path, const QString &value);
QString uuidError(const QString &path, const QString &value);
QString timestampError(const QString &path, const QString &value);

} // namespace velino
