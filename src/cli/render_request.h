#pragma once

#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace velino::cli {

// What velino-render is asked to do.
struct RenderOptions {
    bool useDefault = false;
    bool repair = false;
    std::optional<PresetKind> preset;
    QString format = QStringLiteral("json");
    QString input = QStringLiteral("-");
};

// Thrown for any bad input: one French sentence, and whether the usage line follows.
struct BadInput {
    QString message;
    bool showUsage = false;
};

extern const char kUsage[];

// The arguments after the program name.
RenderOptions parseRenderArguments(const QStringList &arguments);

// The record in the input bytes: strict JSON, UTF-8, the 31 text fields.
MailComposerData decodeRenderInput(const QByteArray &bytes);

// Repair, then preset, then the output of the chosen format.
QByteArray renderOutput(const RenderOptions &options, MailComposerData record);

} // namespace velino::cli
