#pragma once

#include "slot_store.h"

namespace velino::server {

// A slot store on a PostgreSQL database, for "postgresql://USER@HOST:PORT/DB" (see
// parsePostgresUrl for the accepted forms). Several server processes may share the database:
// they behave as one service. Nothing, with a French sentence in `error`, for an address it
// cannot use; the database itself is first reached by open().
std::unique_ptr<SlotStore> makePostgresSlotStore(const QString &url, QString *error);

} // namespace velino::server
