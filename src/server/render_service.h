#pragma once

#include "http_exchange.h"
#include "mail_composer_data.h"
#include "preset_kind.h"

#include <QByteArray>
#include <QString>

#include <optional>

// The phone page's rendering: the same core functions as velino-render, so the phone shows
// byte for byte the desktop's e-mail.
namespace velino::server {

inline constexpr auto kInvalidRenderRequest = "Requete de rendu invalide : %1.";

// {activePreset, data?, applyPreset?}: data missing gives the default record; applyPreset
// writes that built-in preset's texts into the record, as the desktop's tiles do.
struct RenderRequest {
    PresetKind activePreset = PresetKind::Devis;
    MailComposerData data;
};

// Strict decoding of the JSON body; nothing, with the French reason in `error`, when it is
// not such a request.
std::optional<RenderRequest> decodeRenderRequest(const QByteArray &body, QString *error);

// POST /api/velino-render: what `velino-render --format json` prints, plus "activePreset"
// and "record" (the content record after the preset, if any, was applied).
HttpResponse renderAnswer(const HttpRequest &request);

// POST /api/velino-preview, a form field "state" holding the same JSON: the e-mail's HTML
// as a document of its own, for the page's sandboxed preview frame. It carries its own
// policy (inline styles, no script), which a srcdoc frame could not: it would inherit the
// page's.
HttpResponse previewAnswer(const HttpRequest &request);

} // namespace velino::server
