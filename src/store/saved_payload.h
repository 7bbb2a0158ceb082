#pragma once

#include "custom_mail_preset.h"
#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace velino {

// The whole working state as it is kept in the per-user store: one compact JSON document.
struct SavedPayload {
    PresetKind preset = PresetKind::Devis;
    MailComposerData data;
    QString smtpLoginEmail; // kept in the format, never used
    QList<CustomMailPreset> customPresets;
    std::optional<QUuid> activeCustomPresetID;
    QString customPresetDraftName;

    QByteArray toJson() const;
    // Strict for preset and data; the four other keys may be missing or null. On failure
    // *error says why.
    static std::optional<SavedPayload> fromJson(const QByteArray &bytes, QString *error);
};

} // namespace velino
