#pragma once

#include "http_exchange.h"

// The phone page's rendering: the same core functions as velino-render, so the phone shows
// byte for byte the desktop's e-mail. Both take {activePreset, data?, applyPreset?}: data
// missing gives the default record; applyPreset writes that built-in preset's texts into the
// record, as the desktop's tiles do.
namespace velino::server {

// POST /api/velino-render: what `velino-render --format json` prints, plus "activePreset"
// and "record" (the content record after the preset, if any, was applied).
HttpResponse renderAnswer(const HttpRequest &request);

// POST /api/velino-preview, a form field "state" holding the same JSON: the e-mail's HTML
// as a document of its own, for the page's sandboxed preview frame. It carries its own
// policy (inline styles, no script), which a srcdoc frame could not: it would inherit the
// page's.
HttpResponse previewAnswer(const HttpRequest &request);

} // namespace velino::server
