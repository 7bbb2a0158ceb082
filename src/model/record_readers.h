#pragma once

#include "custom_mail_preset.h"
#include "json_reader.h"
#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QList>
#include <QUuid>

#include <optional>

// Members shared by the documents that carry content records: each reads the member named
// key through the reader and, on failure, leaves the reader failed with the message.
namespace velino {

std::optional<PresetKind> readPresetKind(JsonReader &reader, QStringView key);
std::optional<MailComposerData> readRecord(JsonReader &reader, QStringView key);
std::optional<QList<CustomMailPreset>> readPresetList(JsonReader &reader, QStringView key,
                                                      TimestampForm form);
// Missing or null gives nothing and leaves the reader ok.
std::optional<QUuid> readOptionalUuid(JsonReader &reader, QStringView key);

} // namespace velino
