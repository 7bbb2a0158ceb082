#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace velino {

// The four ready-made kinds of client e-mail, in tile order.
enum class PresetKind { Devis, Pret, Rdv, Relance };

inline constexpr std::array<PresetKind, 4> kAllPresetKinds = {PresetKind::Devis, PresetKind::Pret,
                                                              PresetKind::Rdv, PresetKind::Relance};

// "devis", "pret", "rdv" or "relance": the identifier stored in every document.
QString presetId(PresetKind kind);
QString presetTitle(PresetKind kind);
QString presetSummary(PresetKind kind);

// Exact, case-sensitive match of an identifier.
std::optional<PresetKind> presetKindFromId(QStringView id);

} // namespace velino
