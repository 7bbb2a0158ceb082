#pragma once

#include "custom_mail_preset.h"
#include "instant.h"
#include "json_reader.h"
#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

// The JSON records exchanged with the phone web interface. Every record decodes strictly
// (all keys required with their type, unknown keys ignored; failures name the key by its
// full path, in French) and encodes compactly. Timestamps of the presets inside are
// internet date-time texts; the `updatedAt` texts of the records themselves are kept as
// they came, never parsed.
namespace velino {

inline QString syncSchemaName() {
    return QStringLiteral("korvel-velino-sync");
}
inline constexpr qint64 kSyncFormatVersion = 1;
inline QString syncSourceName() {
    return QStringLiteral("macos");
}

// The transported working state.
struct VelinoSyncPayload {
    QString schema;
    qint64 version = 0;
    PresetKind activePreset = PresetKind::Devis;
    MailComposerData data;
    QList<CustomMailPreset> customPresets;
    // Missing or null in the document; written only when present.
    std::optional<QUuid> activeCustomPresetID;
    QString customPresetDraftName;
    QString updatedAt;
    QString source;

    // What the desktop sends: the selected built-in preset and the content only, with an
    // empty preset list, no active saved preset and an empty draft name.
    static VelinoSyncPayload forSending(PresetKind activePreset, const MailComposerData &data,
                                        Instant now);

    QJsonObject toJson() const;
    static std::optional<VelinoSyncPayload> fromJson(const QJsonObject &object, const QString &path,
                                                     QString *error);
};

// Body of the upload request.
struct VelinoSyncUpload {
    QString code;
    VelinoSyncPayload payload;

    QJsonObject toJson() const;
    static std::optional<VelinoSyncUpload> fromJson(const QJsonObject &object, const QString &path,
                                                    QString *error);
};

// Answer to a successful upload; `ok` is required but carries no meaning.
struct VelinoSyncUploadResponse {
    bool ok = false;
    QString updatedAt;

    QJsonObject toJson() const;
    static std::optional<VelinoSyncUploadResponse> fromJson(const QJsonObject &object,
                                                            const QString &path, QString *error);
};

// One stored state on the server.
struct VelinoSyncSnapshot {
    QString updatedAt;
    VelinoSyncPayload payload;

    QJsonObject toJson() const;
    static std::optional<VelinoSyncSnapshot> fromJson(const QJsonObject &object,
                                                      const QString &path, QString *error);
};

// Answer to a successful download; `ok` is required but carries no meaning.
struct VelinoSyncDownloadResponse {
    bool ok = false;
    VelinoSyncSnapshot snapshot;

    QJsonObject toJson() const;
    static std::optional<VelinoSyncDownloadResponse> fromJson(const QJsonObject &object,
                                                              const QString &path, QString *error);
};

// Body of a refused request.
struct VelinoSyncErrorResponse {
    QString error;

    QJsonObject toJson() const;
    static std::optional<VelinoSyncErrorResponse> fromJson(const QJsonObject &object,
                                                           const QString &path, QString *error);
};

// Compact JSON bytes of one record.
template <typename Record> QByteArray encodeSyncRecord(const Record &record) {
    return QJsonDocument(record.toJson()).toJson(QJsonDocument::Compact);
}

// One record from JSON bytes; on failure *error holds the French description.
template <typename Record>
std::optional<Record> decodeSyncRecord(const QByteArray &bytes, QString *error) {
    error->clear();
    const std::optional<QJsonObject> object = parseJsonObject(bytes, error);
    if (!object)
        return std::nullopt;
    return Record::fromJson(*object, QString(), error);
}

} // namespace velino
