#pragma once

#include <QString>
#include <QUrl>

#include <optional>

// The one service host Velino talks to. The host is compiled in (CMake cache option
// VELINO_SERVICE_HOST, "korvel.example" unless configured otherwise); the environment
// variable VELINO_SERVICE_HOST, as "host" or "host:port", replaces it at run time. An
// empty variable counts as unset; a value that is not a bare host with an optional port
// (user info, path, query, blanks, port 0 or beyond 65535...) is ignored with a warning and
// the compiled-in host is used.
namespace velino {

// The compiled-in host.
QString defaultServiceHost();

// The host, as "host" or "host:port", when text is exactly that; nothing otherwise.
std::optional<QString> parseServiceHost(const QString &text);

// The host in use: the environment's when valid, else the compiled-in one.
QString serviceHost();

// https://HOST/api/velino-sync
QUrl syncEndpoint();

// https://HOST/velino.html, the phone web interface.
QUrl webInterfaceUrl();

} // namespace velino
