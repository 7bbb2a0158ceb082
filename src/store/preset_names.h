#pragma once

#include "custom_mail_preset.h"

#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace velino {

// Trimmed, every run of white space made one blank; case kept.
QString normalizedPresetName(const QString &name);

// The normalised name, made unique in the library (case, inner spacing and canonical
// equivalence ignored) by appending " 2", " 3", ...; the preset excluded never collides
// with itself. A blank name gives "Preset client" without any check.
QString uniquePresetName(const QString &name, const QList<CustomMailPreset> &library,
                         const std::optional<QUuid> &excluding);

// Removes every preset with that id, appends the new one and sorts the library newest
// first, presets with equal update times keeping their order.
void upsertCustomPreset(QList<CustomMailPreset> &library, const CustomMailPreset &preset);

// Newest first by update time; equal times keep their order.
void sortNewestFirst(QList<CustomMailPreset> &library);

} // namespace velino
