#include "mail_app_texts.h"

namespace velino {

const MailAppTexts &mailAppTexts(MailPlatform platform) {
    static const MailAppTexts appleMail{
        QStringLiteral("Brouillon ouvert dans Apple Mail."),
        QStringLiteral("Mail copie pour Apple Mail."),
        QStringLiteral("Apple Mail n'a pas pu creer le brouillon HTML automatiquement. Un "
                       "nouveau mail a ete ouvert avec l'objet et le destinataire, et le contenu "
                       "complet a ete copie dans le presse-papiers."),
        QStringLiteral("Apple Mail est introuvable sur ce Mac."),
        QStringLiteral("Impossible de preparer le pont Apple Mail dans cette app."),
        QStringLiteral("Apple Mail n'a pas pu creer le brouillon automatiquement. Verifie "
                       "l'autorisation Automation de Velino dans Reglages Systeme > "
                       "Confidentialite et securite."),
        QStringLiteral("Apple Mail actif"),
        QStringLiteral("Ouvre un brouillon HTML natif dans Apple Mail avec le compte configure "
                       "sur ce Mac."),
        QStringLiteral("Apple Mail"),
        QStringLiteral("Connexion native au Mail configure sur ce Mac."),
        QStringLiteral("Apple"),
        QStringLiteral("Mail.app"),
    };
    // The automation permission belongs to macOS: on Linux the first sentence stands alone.
    static const MailAppTexts thunderbird{
        QStringLiteral("Brouillon ouvert dans Thunderbird."),
        QStringLiteral("Mail copie pour Thunderbird."),
        QStringLiteral("Thunderbird n'a pas pu creer le brouillon HTML automatiquement. Un "
                       "nouveau mail a ete ouvert avec l'objet et le destinataire, et le contenu "
                       "complet a ete copie dans le presse-papiers."),
        QStringLiteral("Thunderbird est introuvable sur cet ordinateur."),
        QStringLiteral("Impossible de preparer le pont Thunderbird dans cette app."),
        QStringLiteral("Thunderbird n'a pas pu creer le brouillon automatiquement."),
        QStringLiteral("Thunderbird actif"),
        QStringLiteral("Ouvre un brouillon HTML natif dans Thunderbird avec le compte configure "
                       "sur cet ordinateur."),
        QStringLiteral("Thunderbird"),
        QStringLiteral("Connexion native au Thunderbird configure sur cet ordinateur."),
        QStringLiteral("Mozilla"),
        QStringLiteral("Thunderbird"),
    };
    return platform == MailPlatform::MacOS ? appleMail : thunderbird;
}

} // namespace velino
