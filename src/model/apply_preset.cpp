#include "default_texts.h"
#include "mail_composer_data.h"

namespace velino {
namespace {

struct PresetTexts {
    QString subject, preheader, mailTitle, mailIntro, mailBody, highlight;
    QString detailLabel2, detailValue2, detailLabel3, detailValue3, detailLabel4, detailValue4;
    QString ctaLabel, closingNote;
};

PresetTexts textsFor(PresetKind kind) {
    switch (kind) {
    case PresetKind::Devis:
        return {
            texts::defaultSubject(),
            QStringLiteral("Un recapitulatif lisible, le montant et la suite en un seul mail."),
            texts::defaultMailTitle(),
            texts::defaultMailIntro(),
            texts::defaultMailBody(),
            texts::highlightDevis(),
            QStringLiteral("Intervention"),
            QStringLiteral("Remplacement ecran OLED"),
            QStringLiteral("Montant"),
            QStringLiteral("149,95 EUR"),
            QStringLiteral("Delai"),
            QStringLiteral("Sous 24 heures"),
            QStringLiteral("Valider le devis"),
            QStringLiteral("Si vous souhaitez valider, il vous suffit de repondre a ce message. "
                           "Nous pouvons ensuite bloquer le creneau.")};
    case PresetKind::Pret:
        return {
            QStringLiteral("Votre appareil est pret"),
            QStringLiteral("Votre appareil peut etre recupere des aujourd'hui a l'atelier."),
            QStringLiteral("Votre appareil est pret"),
            QStringLiteral("Bonjour Mme Lambert,\n\nBonne nouvelle, l'intervention est terminee "
                           "et votre appareil est pret a etre recupere."),
            QStringLiteral("Nous avons finalise la reparation et tout est pret pour votre "
                           "passage. Vous trouverez juste dessous le recapitulatif utile avant "
                           "retrait."),
            texts::highlightPret(),
            QStringLiteral("Intervention"),
            QStringLiteral("Ecran remplace"),
            QStringLiteral("Montant"),
            QStringLiteral("149,95 EUR"),
            QStringLiteral("Disponibilite"),
            QStringLiteral("Des maintenant a l'atelier"),
            QStringLiteral("Confirmer votre passage"),
            QStringLiteral("Si vous voulez, vous pouvez simplement repondre a ce mail pour nous "
                           "indiquer votre heure de passage.")};
    case PresetKind::Rdv:
        return {
            QStringLiteral("Confirmation de votre rendez-vous"),
            QStringLiteral("Votre creneau est confirme avec les informations essentielles en un "
                           "coup d'oeil."),
            QStringLiteral("Votre rendez-vous est confirme"),
            QStringLiteral("Bonjour Mme Lambert,\n\nJe vous confirme votre rendez-vous et vous "
                           "envoie un recapitulatif tres clair pour eviter toute hesitation."),
            QStringLiteral("Vous trouverez ci-dessous le creneau retenu, l'appareil concerne et "
                           "la nature de l'intervention. Si besoin, vous pouvez repondre "
                           "directement a ce message."),
            texts::highlightRdv(),
            QStringLiteral("Intervention"),
            QStringLiteral("Diagnostic complet"),
            QStringLiteral("Rendez-vous"),
            QStringLiteral("Mardi a 14h30"),
            QStringLiteral("Lieu"),
            QStringLiteral("Atelier Korvel"),
            QStringLiteral("Confirmer ce rendez-vous"),
            QStringLiteral(
                "Si un changement est necessaire, une simple reponse a ce mail suffit.")};
    case PresetKind::Relance:
        return {QStringLiteral("Je reviens vers vous concernant votre demande"),
                QStringLiteral("Une relance propre, douce et tres lisible pour reprendre contact."),
                QStringLiteral("Petit retour sur votre demande"),
                QStringLiteral("Bonjour Mme Lambert,\n\nJe me permets de revenir vers vous "
                               "concernant votre demande afin de vous laisser un recapitulatif "
                               "clair."),
                QStringLiteral("Le devis et les informations sont toujours disponibles. Si vous "
                               "souhaitez avancer, il suffit de repondre a ce message et nous "
                               "pourrons organiser la suite rapidement."),
                texts::highlightRelance(),
                QStringLiteral("Sujet"),
                QStringLiteral("Changement d'ecran"),
                QStringLiteral("Derniere proposition"),
                QStringLiteral("149,95 EUR"),
                QStringLiteral("Statut"),
                QStringLiteral("En attente de votre retour"),
                QStringLiteral("Me repondre"),
                QStringLiteral("Je reste disponible si vous souhaitez valider, poser une question "
                               "ou reserver un creneau.")};
    }
    return {};
}

} // namespace

void MailComposerData::applyPreset(PresetKind kind) {
    PresetTexts t = textsFor(kind);
    subject = std::move(t.subject);
    preheader = std::move(t.preheader);
    mailTitle = std::move(t.mailTitle);
    mailIntro = std::move(t.mailIntro);
    mailBody = std::move(t.mailBody);
    highlight = std::move(t.highlight);
    detailLabel1 = QStringLiteral("Appareil");
    detailValue1 = QStringLiteral("iPhone 14 Pro");
    detailLabel2 = std::move(t.detailLabel2);
    detailValue2 = std::move(t.detailValue2);
    detailLabel3 = std::move(t.detailLabel3);
    detailValue3 = std::move(t.detailValue3);
    detailLabel4 = std::move(t.detailLabel4);
    detailValue4 = std::move(t.detailValue4);
    ctaLabel = std::move(t.ctaLabel);
    ctaURL = texts::workshopMailto();
    closingNote = std::move(t.closingNote);
}

} // namespace velino
