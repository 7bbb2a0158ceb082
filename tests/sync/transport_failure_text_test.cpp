#include "transport_failure_text.h"

#include <gtest/gtest.h>

using namespace velino;

TEST(TransportFailureText, OneFrenchSentencePerFailureThenThePlatformText) {
    using E = QNetworkReply::NetworkError;
    using S = QSslError::SslError;
    const std::tuple<E, QList<S>, const char *> cases[] = {
        {E::HostNotFoundError, {}, "Serveur de synchronisation introuvable"},
        {E::ConnectionRefusedError, {}, "Le serveur de synchronisation refuse la connexion."},
        {E::SslHandshakeFailedError,
         {S::UnableToGetLocalIssuerCertificate, S::CertificateUntrusted},
         "Le certificat du serveur de synchronisation n'est pas reconnu"},
        {E::SslHandshakeFailedError,
         {S::SelfSignedCertificate, S::HostNameMismatch},
         "Le certificat du serveur de synchronisation est emis pour un autre nom"},
        {E::SslHandshakeFailedError,
         {S::CertificateExpired},
         "Le certificat du serveur de synchronisation a expire"},
        {E::SslHandshakeFailedError, {}, "Connexion securisee impossible"},
        {E::RemoteHostClosedError, {}, "Le serveur de synchronisation a ferme la connexion."},
        {E::UnknownNetworkError, {}, "Reseau indisponible ou serveur injoignable"},
        {E::ProxyAuthenticationRequiredError, {}, "Le proxy de cet ordinateur"},
        {E::ProtocolFailure, {}, "Connexion au serveur de synchronisation impossible."},
    };
    for (const auto &[error, ssl, starts] : cases) {
        const QString text = transportFailureText(error, ssl, " Platform text\n");
        EXPECT_TRUE(text.startsWith(QString::fromLatin1(starts))) << text.toStdString();
        EXPECT_TRUE(text.endsWith(". (Platform text)")) << text.toStdString();
    }
    EXPECT_EQ(transportFailureText(E::ConnectionRefusedError, {}, ""),
              "Le serveur de synchronisation refuse la connexion.");
}
