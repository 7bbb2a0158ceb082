#include "postgres_slot_store.h"
#include "postgres_url.h"
#include "slot_store.h"
#include "sqlite_slot_store.h"

namespace velino::server {

std::unique_ptr<SlotStore> makeSlotStore(const QString &databaseUrl, QString *error) {
    error->clear();
    const QString sqlitePrefix = QStringLiteral("sqlite:");
    // Schemes are case-insensitive, as in every URL.
    if (databaseUrl.startsWith(sqlitePrefix, Qt::CaseInsensitive)) {
        const QString path = databaseUrl.mid(sqlitePrefix.size());
        if (path.isEmpty()) {
            *error = QStringLiteral("Base de donnees invalide : il manque le chemin du fichier "
                                    "apres \"sqlite:\".");
            return nullptr;
        }
        return std::make_unique<SqliteSlotStore>(path);
    }
    if (postgresSchemeLength(databaseUrl) > 0)
        return makePostgresSlotStore(databaseUrl, error);
    *error = QStringLiteral("Base de donnees invalide : attendu \"sqlite:CHEMIN\" ou "
                            "\"postgresql://UTILISATEUR@HOTE:PORT/BASE\".");
    return nullptr;
}

} // namespace velino::server
