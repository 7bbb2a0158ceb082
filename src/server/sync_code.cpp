#include "sync_code.h"

#include "sync_client.h"

#include <QCryptographicHash>

namespace velino::server {

bool isWellFormedSyncCode(const QString &code) {
    // The length first: the normalisation of a long text is not worth computing.
    return code.size() >= kSyncCodeMinLength && code.size() <= kSyncCodeMaxLength &&
           normalizedSyncCode(code) == code;
}

QByteArray slotKeyOf(const QString &code) {
    return QCryptographicHash::hash(code.toUtf8(), QCryptographicHash::Sha256);
}

} // namespace velino::server
