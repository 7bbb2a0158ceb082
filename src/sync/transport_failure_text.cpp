#include "transport_failure_text.h"

#include "sync_client.h"

#include <algorithm>

namespace velino {
namespace {

bool hasAny(const QList<QSslError::SslError> &errors,
            std::initializer_list<QSslError::SslError> wanted) {
    return std::any_of(errors.begin(), errors.end(), [&wanted](QSslError::SslError e) {
        return std::find(wanted.begin(), wanted.end(), e) != wanted.end();
    });
}

QString certificateSentence(const QList<QSslError::SslError> &errors) {
    // A certificate can fail several checks; the host name comes first, as it is the one a
    // user can act on, then the dates, then trust.
    if (hasAny(errors, {QSslError::HostNameMismatch}))
        return QStringLiteral("Le certificat du serveur de synchronisation est emis pour un "
                              "autre nom de serveur.");
    if (hasAny(errors, {QSslError::CertificateExpired, QSslError::CertificateNotYetValid}))
        return QStringLiteral("Le certificat du serveur de synchronisation a expire ou n'est "
                              "pas encore valide : verifie aussi la date de cet ordinateur.");
    if (!errors.isEmpty())
        return QStringLiteral("Le certificat du serveur de synchronisation n'est pas reconnu "
                              "par cet ordinateur.");
    return QStringLiteral("Connexion securisee impossible avec le serveur de synchronisation.");
}

QString sentenceFor(QNetworkReply::NetworkError error,
                    const QList<QSslError::SslError> &sslErrors) {
    switch (error) {
    case QNetworkReply::HostNotFoundError:
        return QStringLiteral("Serveur de synchronisation introuvable : verifie la connexion "
                              "Internet et le nom du serveur.");
    case QNetworkReply::ConnectionRefusedError:
        return QStringLiteral("Le serveur de synchronisation refuse la connexion.");
    case QNetworkReply::SslHandshakeFailedError:
        return certificateSentence(sslErrors);
    case QNetworkReply::RemoteHostClosedError:
        return QStringLiteral("Le serveur de synchronisation a ferme la connexion.");
    case QNetworkReply::TimeoutError:
        return synctext::timedOut();
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError: // among others, "Network unreachable"
        return QStringLiteral("Reseau indisponible ou serveur injoignable : verifie la "
                              "connexion Internet.");
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::UnknownProxyError:
        return QStringLiteral("Le proxy de cet ordinateur ne permet pas de joindre le serveur "
                              "de synchronisation.");
    default:
        break;
    }
    if (!sslErrors.isEmpty())
        return certificateSentence(sslErrors);
    return QStringLiteral("Connexion au serveur de synchronisation impossible.");
}

} // namespace

QString transportFailureText(QNetworkReply::NetworkError error,
                             const QList<QSslError::SslError> &sslErrors,
                             const QString &platformText) {
    const QString sentence = sentenceFor(error, sslErrors);
    const QString detail = platformText.trimmed();
    return detail.isEmpty() ? sentence : sentence + QStringLiteral(" (") + detail + u')';
}

} // namespace velino
