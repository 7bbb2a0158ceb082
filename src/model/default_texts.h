#pragma once

#include "constants.h"

#include <QString>

// Texts shared by the default record, the devis preset and the rendering fallbacks.
namespace velino::texts {

inline QString defaultSubject() {
    return QStringLiteral("Votre devis Korvel est pret");
}
inline QString defaultPreheader() {
    return QStringLiteral(
        "Retrouvez votre recapitulatif clair, le montant et la suite en un coup d'oeil.");
}
inline QString defaultMailTitle() {
    return QStringLiteral("Votre devis est pret");
}
inline QString defaultMailIntro() {
    return QStringLiteral("Bonjour Mme Lambert,\n\nMerci pour votre passage a l'atelier. Voici un "
                          "recapitulatif simple et propre de votre demande.");
}
inline QString defaultMailBody() {
    return QStringLiteral("Nous avons etudie votre appareil et prepare une proposition claire pour "
                          "la suite. Vous retrouvez ci-dessous les informations essentielles, puis "
                          "un bouton rapide pour nous repondre.");
}
inline QString defaultTitleFont() {
    return QStringLiteral("-apple-system, BlinkMacSystemFont, \"SF Pro Display\", \"Helvetica "
                          "Neue\", Arial, sans-serif");
}
inline QString defaultBodyFont() {
    return QStringLiteral("-apple-system, BlinkMacSystemFont, \"SF Pro Text\", \"Helvetica Neue\", "
                          "Arial, sans-serif");
}
inline QString workshopMailto() {
    return QStringLiteral("mailto:") + QLatin1String(kWorkshopContactEmail);
}
inline QString defaultPrimary() {
    return QStringLiteral("#2f7cf6");
}
inline QString defaultSecondary() {
    return QStringLiteral("#7a5cff");
}

inline QString highlightDevis() {
    return QStringLiteral("Montant estime · Reponse par email");
}
inline QString highlightPret() {
    return QStringLiteral("Appareil pret · Retrait a l'atelier");
}
inline QString highlightRdv() {
    return QStringLiteral("Rendez-vous confirme · Reponse simple si besoin");
}
inline QString highlightRelance() {
    return QStringLiteral("Demande en attente · Retour par email");
}

} // namespace velino::texts
