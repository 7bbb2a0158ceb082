#pragma once

#include "http_exchange.h"

namespace velino::server {

// The phone page: its own files only, no inline script or style, no plug-in, no base
// change; frames only for the preview, which the page posts to the service.
inline constexpr auto kPagePolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; frame-src 'self'; form-action 'self'; base-uri 'none'; "
    "frame-ancestors 'none'; object-src 'none'";

// The e-mail in the preview frame: its inline styles and remote images, never a script,
// in a unique origin.
inline constexpr auto kPreviewPolicy =
    "sandbox; default-src 'none'; style-src 'unsafe-inline'; img-src https: data:; "
    "font-src https: data:; form-action 'none'; base-uri 'none'; frame-ancestors 'self'";

// Adds what every answer carries unless it set its own: no caching of codes and drafts,
// no MIME sniffing, no referrer, and the page policy.
void addSecurityHeaders(HttpResponse &response);

} // namespace velino::server
