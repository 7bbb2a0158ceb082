#include "web_headers.h"

namespace velino::server {

void addSecurityHeaders(HttpResponse &response) {
    const auto setDefault = [&](const char *name, const char *value) {
        if (response.headers.find(name) == response.headers.end())
            response.headers.emplace(name, value);
    };
    setDefault("Cache-Control", "no-store");
    setDefault("X-Content-Type-Options", "nosniff");
    setDefault("Referrer-Policy", "no-referrer");
    setDefault("Content-Security-Policy", kPagePolicy);
}

} // namespace velino::server
