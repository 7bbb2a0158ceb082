#include "mail_template_context.h"
#include "text.h"

namespace velino {

QList<ChecklistItem> MailTemplateContext::checklist() const {
    using text::isBlank;
    const qsizetype subjectLength = text::characterCount(subject);
    const auto item = [](bool ok, const QString &success, const QString &advice) {
        return ChecklistItem(ok, ok ? success : advice);
    };
    return {
        item(!isBlank(data.recipientEmail), QStringLiteral("Le destinataire est renseigne."),
             QStringLiteral("Ajoute l'email du client pour finaliser l'envoi.")),
        item(subjectLength >= 12 && subjectLength <= 90,
             QStringLiteral("L'objet est d'une bonne longueur."),
             QStringLiteral("Garde un objet entre 12 et 90 caracteres pour une lecture nette.")),
        item(!mailTitle.isEmpty(), QStringLiteral("Le titre du mail est bien en place."),
             QStringLiteral("Ajoute un titre principal clair.")),
        item(!isBlank(mailIntro) && !isBlank(mailBody),
             QStringLiteral("Le message contient une ouverture et un corps de texte."),
             QStringLiteral("Ajoute une phrase d'ouverture et un message principal.")),
        item(details.size() >= 2, QStringLiteral("Le bloc infos est assez rassurant."),
             QStringLiteral("Ajoute au moins deux lignes dans le bloc infos.")),
        item(!logoURL.isEmpty() && !accentPrimary.isEmpty() && !titleFont.isEmpty(),
             QStringLiteral("Le logo, les couleurs et les polices sont en place."),
             QStringLiteral("Renseigne logo, couleurs et polices.")),
        item(!isBlank(data.ctaLabel) && ctaHref != u"#",
             QStringLiteral("Le client sait quoi faire ensuite."),
             QStringLiteral("Ajoute un bouton ou un lien d'action clair.")),
        item(!isBlank(data.senderName) &&
                 (!isBlank(data.senderEmail) || !isBlank(data.senderPhone)),
             QStringLiteral("La signature inspire confiance."),
             QStringLiteral("Ajoute un nom et un contact dans la signature.")),
    };
}

QString MailTemplateContext::formatStatus() const {
    if (!logoURL.isEmpty() && details.size() >= 3 && !text::isBlank(data.ctaLabel) &&
        !text::isBlank(data.recipientEmail))
        return QStringLiteral("Pret a envoyer");
    if (details.size() < 2)
        return QStringLiteral("A completer");
    return QStringLiteral("En preparation");
}

} // namespace velino
