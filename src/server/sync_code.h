#pragma once

#include <QByteArray>
#include <QString>

namespace velino::server {

// 16 to 64 characters of "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-", taken as they come:
// a code the desktop's normalisation leaves unchanged, as it sends them.
bool isWellFormedSyncCode(const QString &code);

// The slot key of a code: its SHA-256 (32 raw bytes), so a copy of the database reveals no
// code.
QByteArray slotKeyOf(const QString &code);

} // namespace velino::server
