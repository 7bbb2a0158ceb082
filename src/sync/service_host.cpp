#include "service_host.h"

#include <QtGlobal>

#include <atomic>

#ifndef VELINO_SERVICE_HOST
#error "VELINO_SERVICE_HOST must be defined by the build"
#endif

namespace velino {
namespace {

QUrl serviceUrl(const QString &path) {
    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setAuthority(serviceHost(), QUrl::StrictMode);
    url.setPath(path);
    return url;
}

} // namespace

QString defaultServiceHost() {
    return QStringLiteral(VELINO_SERVICE_HOST);
}

std::optional<QString> parseServiceHost(const QString &text) {
    if (text.isEmpty())
        return std::nullopt;
    // Only the host and port parts of an authority; anything that would end it or add
    // user info is refused before QUrl gets a chance to split it.
    for (const QChar c : text) {
        if (c.unicode() <= 0x20 || c == u'/' || c == u'?' || c == u'#' || c == u'@' || c == u'\\' ||
            c.unicode() == 0x7F)
            return std::nullopt;
    }
    QUrl url;
    url.setScheme(QStringLiteral("https"));
    url.setAuthority(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() || !url.userInfo().isEmpty())
        return std::nullopt;
    const int port = url.port();
    if (port == 0)
        return std::nullopt;
    // A trailing ":" without digits leaves no port; refuse rather than guess.
    if (port < 0 && text.endsWith(u':'))
        return std::nullopt;
    return url.authority(QUrl::FullyEncoded);
}

QString serviceHost() {
    const QString fromEnvironment = qEnvironmentVariable("VELINO_SERVICE_HOST");
    if (fromEnvironment.isEmpty())
        return defaultServiceHost();
    if (std::optional<QString> host = parseServiceHost(fromEnvironment))
        return *host;
    static std::atomic_bool warned = false;
    if (!warned.exchange(true))
        qWarning("VELINO_SERVICE_HOST ignore (hote ou hote:port attendu) : %s ; hote par defaut %s",
                 qUtf8Printable(fromEnvironment), qUtf8Printable(defaultServiceHost()));
    return defaultServiceHost();
}

QUrl syncEndpoint() {
    return serviceUrl(QStringLiteral("/api/velino-sync"));
}

QUrl webInterfaceUrl() {
    return serviceUrl(QStringLiteral("/velino.html"));
}

} // namespace velino
