#include "sync_code.h"

#include <QCryptographicHash>

namespace velino::server {

bool isWellFormedSyncCode(const QString &code) {
    if (code.size() < 16 || code.size() > 64)
        return false;
    for (const QChar c : code) {
        const char16_t u = c.unicode();
        const bool allowed = (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9') || u == u'-';
        if (!allowed)
            return false;
    }
    return true;
}

QByteArray slotKeyOf(const QString &code) {
    return QCryptographicHash::hash(code.toUtf8(), QCryptographicHash::Sha256);
}

} // namespace velino::server
