#include "settings_format.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace velino {
namespace {

const QByteArray kBytesPrefix = QByteArrayLiteral("@ByteArray(");
const QByteArray kStringPrefix = QByteArrayLiteral("@String(");

// Compact JSON holds backslashes but no raw line breaks: each of the three bytes to escape
// is looked up with memchr, and a position is searched again only once it has been passed.
void appendEscaped(QByteArray &out, QByteArrayView text) {
    const char *p = text.data();
    const char *const end = p + text.size();
    const auto find = [end](const char *from, char c) {
        if (from == end)
            return end; // an empty view may have no data pointer at all
        const void *hit = std::memchr(from, c, static_cast<size_t>(end - from));
        return hit ? static_cast<const char *>(hit) : end;
    };
    const char *nextBackslash = find(p, '\\');
    const char *nextLineFeed = find(p, '\n');
    const char *nextReturn = find(p, '\r');
    while (p < end) {
        const char *special = std::min({nextBackslash, nextLineFeed, nextReturn});
        out.append(p, special - p);
        if (special == end)
            break;
        out.append('\\');
        if (special == nextBackslash) {
            out.append('\\');
            nextBackslash = find(special + 1, '\\');
        } else if (special == nextLineFeed) {
            out.append('n');
            nextLineFeed = find(special + 1, '\n');
        } else {
            out.append('r');
            nextReturn = find(special + 1, '\r');
        }
        p = special + 1;
    }
}

QByteArray unescaped(QByteArrayView text, bool inKey = false) {
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

QVariant decodedValue(QByteArrayView text) {
    if (text.startsWith(kBytesPrefix) && text.endsWith(')'))
        return unescaped(text.sliced(kBytesPrefix.size(), text.size() - kBytesPrefix.size() - 1));
    if (text.startsWith(kStringPrefix) && text.endsWith(')'))
        return QString::fromUtf8(
            unescaped(text.sliced(kStringPrefix.size(), text.size() - kStringPrefix.size() - 1)));
    return QString::fromUtf8(unescaped(text));
}

bool readSettings(QIODevice &device, QSettings::SettingsMap &map) {
    const QByteArray content = device.readAll();
    QByteArrayView rest(content);
    while (!rest.isEmpty()) {
        const qsizetype lineEnd = rest.indexOf('\n');
        const QByteArrayView line = lineEnd < 0 ? rest : rest.first(lineEnd);
        rest = lineEnd < 0 ? QByteArrayView() : rest.sliced(lineEnd + 1);
        const qsizetype separator = line.indexOf('=');
        if (separator <= 0)
            continue; // blank line, section header or damage: skipped
        map.insert(QString::fromUtf8(unescaped(line.first(separator), true)),
                   decodedValue(line.sliced(separator + 1)));
    }
    return true;
}

bool writeSettings(QIODevice &device, const QSettings::SettingsMap &map) {
    qsizetype size = 0;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        size += it.key().size() + 32 +
                (it.value().typeId() == QMetaType::QByteArray ? it.value().toByteArray().size()
                                                              : it.value().toString().size() * 3);
    QByteArray out;
    out.reserve(size + size / 16);
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        QByteArray key;
        appendEscaped(key, it.key().toUtf8());
        out.append(key.replace('=', QByteArrayLiteral("\\q")));
        out.append('=');
        if (it.value().typeId() == QMetaType::QByteArray) {
            out.append(kBytesPrefix);
            appendEscaped(out, it.value().toByteArray());
            out.append(')');
        } else {
            const QString text = it.value().toString();
            const bool tagged = text.startsWith(u'@');
            if (tagged)
                out.append(kStringPrefix);
            appendEscaped(out, text.toUtf8());
            if (tagged)
                out.append(')');
        }
        out.append('\n');
    }
    return device.write(out) == out.size();
}

} // namespace

QSettings::Format velinoSettingsFormat() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("conf"), readSettings, writeSettings);
    return format;
}

} // namespace velino
