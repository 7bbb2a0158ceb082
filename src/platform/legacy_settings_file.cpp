#include "legacy_settings_file.h"

#include "state_keys.h"

#include <QByteArrayView>
#include <QFile>

#include <algorithm>

namespace velino {
namespace {

const QByteArray kBytesPrefix = QByteArrayLiteral("@ByteArray(");
const QByteArray kStringPrefix = QByteArrayLiteral("@String(");

QByteArray unescaped(QByteArrayView text, bool inKey) {
    QByteArray out;
    out.reserve(text.size());
    const char *p = text.data();
    const char *const end = p + text.size();
    while (p < end) {
        const char *escape = std::find(p, end, '\\');
        out.append(p, escape - p);
        if (escape == end)
            break;
        if (escape + 1 < end) {
            const char code = escape[1];
            out.append(code == 'n' ? '\n' : code == 'r' ? '\r' : inKey && code == 'q' ? '=' : code);
            p = escape + 2;
        } else {
            p = end; // a lone backslash at the end of a line is dropped
        }
    }
    return out;
}

std::optional<QByteArrayView> enclosed(QByteArrayView value, const QByteArray &prefix) {
    if (!value.startsWith(prefix) || !value.endsWith(')'))
        return std::nullopt;
    return value.sliced(prefix.size(), value.size() - prefix.size() - 1);
}

} // namespace

LegacyFileState readLegacySettingsFile(const QString &path, LegacySettings *settings) {
    QFile file(path);
    if (!file.exists())
        return LegacyFileState::Absent;
    if (!file.open(QIODevice::ReadOnly))
        return LegacyFileState::Unreadable;
    return parseLegacySettings(file.readAll(), settings);
}

LegacyFileState parseLegacySettings(QByteArrayView content, LegacySettings *settings) {
    LegacySettings read;
    bool holdsDocumentKey = false;
    QByteArrayView rest(content);
    while (!rest.isEmpty()) {
        const qsizetype lineEnd = rest.indexOf('\n');
        QByteArrayView line = lineEnd < 0 ? rest : rest.first(lineEnd);
        rest = lineEnd < 0 ? QByteArrayView() : rest.sliced(lineEnd + 1);
        if (line.endsWith('\r'))
            line.chop(1);
        const qsizetype separator = line.indexOf('=');
        if (separator <= 0)
            continue; // blank line, section header or damage: skipped, as before
        const QByteArray key = unescaped(line.first(separator), true);
        const QByteArrayView value = line.sliced(separator + 1);
        if (key == kSavedStateKey) {
            holdsDocumentKey = true;
            const std::optional<QByteArrayView> bytes = enclosed(value, kBytesPrefix);
            // Stored as text, the value was never read as the saved state: there is none.
            read.document = bytes ? std::optional(unescaped(*bytes, false)) : std::nullopt;
        } else if (key == kSyncCodeKey) {
            if (enclosed(value, kBytesPrefix)) {
                read.syncCode.reset(); // binary, not text
            } else {
                const std::optional<QByteArrayView> tagged = enclosed(value, kStringPrefix);
                read.syncCode = QString::fromUtf8(unescaped(tagged ? *tagged : value, false));
            }
        }
    }
    if (!holdsDocumentKey)
        return LegacyFileState::Absent;
    *settings = std::move(read);
    return LegacyFileState::Read;
}

} // namespace velino
