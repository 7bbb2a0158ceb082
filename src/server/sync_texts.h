#pragma once

// The French sentences of the sync service's refusals, shown by the desktop as they are.
namespace velino::server::texts {

inline constexpr auto kUnknownCode = "Code inconnu";
inline constexpr auto kInvalidCode =
    "Code prive invalide : il faut 16 a 64 caracteres parmi A-Z, 0-9 et -.";
inline constexpr auto kBodyTooLarge = "Brouillon trop volumineux : %1 octets au plus.";
inline constexpr auto kIncompleteBody =
    "Requete incomplete : le corps recu ne correspond pas a la longueur annoncee.";
inline constexpr auto kMalformedRequest = "Requete HTTP invalide.";
inline constexpr auto kMethodNotAllowed = "Methode non autorisee pour cette adresse.";
inline constexpr auto kTooManyLookups = "Trop de tentatives : reessaie dans une minute.";
inline constexpr auto kTooManyRequests = "Trop de requetes : reessaie dans une minute.";
inline constexpr auto kStorageUnavailable =
    "Stockage indisponible : reessaie dans quelques instants.";
inline constexpr auto kUnknownAddress = "Adresse inconnue.";
inline constexpr auto kInternalError = "Erreur interne du service de synchronisation.";

} // namespace velino::server::texts
