#pragma once

#include <QList>
#include <QNetworkReply>
#include <QSslError>
#include <QString>

namespace velino {

// The sentence shown when a sync request fails below HTTP: one French sentence per kind of
// failure (name resolution, refused connection, untrusted, mismatched or expired
// certificate, closed connection, unreachable network, proxy), followed by the platform's
// own text in parentheses, for support. sslErrors are those reported during the handshake.
QString transportFailureText(QNetworkReply::NetworkError error,
                             const QList<QSslError::SslError> &sslErrors,
                             const QString &platformText);

} // namespace velino
