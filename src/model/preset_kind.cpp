#include "preset_kind.h"

namespace velino {

QString presetId(PresetKind kind) {
    switch (kind) {
    case PresetKind::Devis:
        return QStringLiteral("devis");
    case PresetKind::Pret:
        return QStringLiteral("pret");
    case PresetKind::Rdv:
        return QStringLiteral("rdv");
    case PresetKind::Relance:
        return QStringLiteral("relance");
    }
    return {};
}

QString presetTitle(PresetKind kind) {
    switch (kind) {
    case PresetKind::Devis:
        return QStringLiteral("Devis");
    case PresetKind::Pret:
        return QStringLiteral("Appareil pret");
    case PresetKind::Rdv:
        return QStringLiteral("Rendez-vous");
    case PresetKind::Relance:
        return QStringLiteral("Relance");
    }
    return {};
}

QString presetSummary(PresetKind kind) {
    switch (kind) {
    case PresetKind::Devis:
        return QStringLiteral("Annonce un prix et un recapitulatif clair.");
    case PresetKind::Pret:
        return QStringLiteral("Confirme qu'un appareil peut etre recupere.");
    case PresetKind::Rdv:
        return QStringLiteral("Valide un creneau et rassure le client.");
    case PresetKind::Relance:
        return QStringLiteral("Reprend contact proprement sans lourdeur.");
    }
    return {};
}

std::optional<PresetKind> presetKindFromId(QStringView id) {
    for (const PresetKind kind : kAllPresetKinds) {
        if (id == presetId(kind))
            return kind;
    }
    return std::nullopt;
}

} // namespace velino
