#pragma once

#include "http_exchange.h"

#include <optional>
#include <string>

namespace velino::server {

// The phone page's files, compiled into the program: /velino.html, its style sheet, its
// modules and its logo. Nothing for any other path.
std::optional<HttpResponse> webFile(const std::string &path);

} // namespace velino::server
