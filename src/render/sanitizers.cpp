#include "sanitizers.h"

#include "text.h"
#include "text_buffer.h"

#include <algorithm>

#include <array>
#include <cmath>
#include <optional>

namespace velino::render {
namespace {

bool isHexDigit(QChar c) {
    return text::hexDigitValue(c.unicode()) >= 0;
}
int hexValue(QChar c) {
    return text::hexDigitValue(c.unicode());
}

bool allHex(QStringView s) {
    for (const QChar c : s) {
        if (!isHexDigit(c))
            return false;
    }
    return true;
}

// Prefix test on the lower-cased text. Only ASCII letters lower-case onto the ASCII
// prefixes tested here, so comparing ASCII-lowered code units is exact.
bool hasLowerPrefix(QStringView s, QLatin1StringView prefix) {
    if (s.size() < prefix.size())
        return false;
    for (qsizetype i = 0; i < prefix.size(); ++i) {
        char16_t c = s[i].unicode();
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char16_t>(c + ('a' - 'A'));
        if (c != prefix[i].unicode())
            return false;
    }
    return true;
}

bool isSingle(QStringView cluster, char16_t c) {
    return cluster.size() == 1 && cluster[0] == c;
}

inline bool isLineBreak(char16_t c) {
    if (c < 0x85)
        return c >= 0x0A && c <= 0x0D;
    return c == 0x85 || c == 0x2028 || c == 0x2029;
}

// First line break in [p, end), or end.
const char16_t *findLineBreak(const char16_t *p, const char16_t *end) {
    while (p < end && !isLineBreak(*p))
        ++p;
    return p;
}

} // namespace

QString resolveLogoSource(const QString &value) {
    const QStringView t = text::trimmedView(value);
    if (hasLowerPrefix(t, QLatin1StringView("https://")) ||
        hasLowerPrefix(t, QLatin1StringView("http://")) ||
        hasLowerPrefix(t, QLatin1StringView("data:")))
        return t.size() == value.size() ? value : t.toString();
    return MailComposerData::fallbackLogoURL();
}

namespace {

// "#" and six hexadecimal digits, or "#" and three to be doubled; nothing otherwise.
std::optional<std::array<int, 3>> untrimmedHexChannels(QStringView t) {
    if (t.isEmpty() || t[0] != u'#' || !allHex(t.mid(1)))
        return std::nullopt;
    if (t.size() == 7)
        return std::array<int, 3>{hexValue(t[1]) * 16 + hexValue(t[2]),
                                  hexValue(t[3]) * 16 + hexValue(t[4]),
                                  hexValue(t[5]) * 16 + hexValue(t[6])};
    if (t.size() == 4)
        return std::array<int, 3>{hexValue(t[1]) * 17, hexValue(t[2]) * 17, hexValue(t[3]) * 17};
    return std::nullopt;
}

bool isLowerCaseSixDigitForm(QStringView t) {
    return t.size() == 7 &&
           std::none_of(t.begin(), t.end(), [](QChar c) { return c >= u'A' && c <= u'F'; });
}

} // namespace

std::optional<std::array<int, 3>> hexColorChannels(QStringView text) {
    return untrimmedHexChannels(text::trimmedView(text));
}

QString normalizeHex(const QString &value, const QString &fallback) {
    const QStringView t = text::trimmedView(value);
    const std::optional<std::array<int, 3>> channels = untrimmedHexChannels(t);
    if (!channels)
        return fallback;
    if (t.size() == value.size() && isLowerCaseSixDigitForm(t))
        return value; // already in final form: share it
    static constexpr char16_t digits[] = u"0123456789abcdef";
    QString out(7, u'#');
    for (int i = 0; i < 3; ++i) {
        out[1 + 2 * i] = QChar(digits[(*channels)[i] >> 4]);
        out[2 + 2 * i] = QChar(digits[(*channels)[i] & 15]);
    }
    return out;
}

RgbaText rgbaText(QStringView hex, double alpha) {
    const std::array<int, 3> channels =
        hexColorChannels(hex).value_or(std::array<int, 3>{0x2f, 0x7c, 0xf6});
    RgbaText out;
    char16_t *p = out.chars;
    const auto put = [&p](const char16_t *s) {
        while (*s)
            *p++ = *s++;
    };
    const auto putNumber = [&p](int n) {
        if (n >= 100)
            *p++ = static_cast<char16_t>(u'0' + n / 100);
        if (n >= 10)
            *p++ = static_cast<char16_t>(u'0' + n / 10 % 10);
        *p++ = static_cast<char16_t>(u'0' + n % 10);
    };
    put(u"rgba(");
    for (const int channel : channels) {
        putNumber(channel);
        put(u", ");
    }
    // Two decimals, as printf's "%.2f" writes them for the alphas in use (0 to 1).
    const int hundredths = static_cast<int>(alpha * 100.0 + 0.5);
    *p++ = static_cast<char16_t>(u'0' + hundredths / 100);
    *p++ = u'.';
    *p++ = static_cast<char16_t>(u'0' + hundredths % 100 / 10);
    *p++ = static_cast<char16_t>(u'0' + hundredths % 10);
    *p++ = u')';
    out.size = p - out.chars;
    return out;
}

QString rgba(const QString &hex, double alpha) {
    return rgbaText(hex, alpha).view().toString();
}

namespace {

constexpr bool isFontPunctuation(char16_t c) {
    switch (c) {
    case u' ':
    case u',':
    case u'"':
    case u'\'':
    case u'-':
    case u'(':
    case u')':
    case u'.':
        return true;
    default:
        return false;
    }
}

bool isKeptInFontStack(QStringView cluster) {
    const char32_t first = text::firstCodePoint(cluster);
    return text::isAlphabetic(first) || text::isNumeric(first) ||
           (cluster.size() == 1 && isFontPunctuation(cluster[0].unicode()));
}

constexpr std::array<bool, 128> kKeptAsciiFontCharacters = [] {
    std::array<bool, 128> kept{};
    for (char16_t c = 0; c < 128; ++c)
        kept[c] = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                  (c >= u'0' && c <= u'9') || isFontPunctuation(c);
    return kept;
}();

bool isKeptAsciiFontCharacter(char16_t c) {
    return kKeptAsciiFontCharacters[c];
}

} // namespace

QString sanitizeFontStack(const QString &value, const QString &fallback) {
    QString kept;
    if (text::isAscii(value)) {
        // One cluster per character (CR LF is dropped either way).
        if (std::all_of(value.begin(), value.end(),
                        [](QChar c) { return isKeptAsciiFontCharacter(c.unicode()); })) {
            kept = value;
        } else {
            kept.resize(value.size());
            QChar *out = kept.data();
            for (const QChar c : value) {
                if (isKeptAsciiFontCharacter(c.unicode()))
                    *out++ = c;
            }
            kept.truncate(out - kept.constData());
        }
    } else {
        kept.reserve(value.size());
        text::forEachCharacter(value, [&kept](QStringView cluster) {
            if (isKeptInFontStack(cluster))
                kept.append(cluster);
        });
    }
    return text::isBlank(kept) ? fallback : kept;
}

QString sanitizeURL(const QString &value, const QString &fallbackEmail) {
    const QString t = text::trimmed(value);
    if (t.isEmpty()) {
        const QStringView email = text::trimmedView(fallbackEmail);
        if (email.isEmpty())
            return QStringLiteral("#");
        return QStringLiteral("mailto:") + email.toString();
    }
    if (hasLowerPrefix(t, QLatin1StringView("mailto:")) ||
        hasLowerPrefix(t, QLatin1StringView("http://")) ||
        hasLowerPrefix(t, QLatin1StringView("https://")) ||
        hasLowerPrefix(t, QLatin1StringView("tel:")))
        return t;
    const bool hasSpace = t.contains(u' ');
    if (t.contains(u'@') && !hasSpace)
        return QStringLiteral("mailto:") + t;
    if (hasLowerPrefix(t, QLatin1StringView("www.")))
        return QStringLiteral("https://") + t;
    if (t.contains(u'.') && !hasSpace)
        return QStringLiteral("https://") + t;
    return t;
}

QString telephoneHref(const QString &phone) {
    QString kept;
    if (text::isAscii(phone)) {
        kept.resize(phone.size() + 4);
        QChar *out = kept.data() + 4;
        for (const QChar c : phone) {
            if ((c >= u'0' && c <= u'9') || c == u'+')
                *out++ = c;
        }
        if (out == kept.constData() + 4)
            return QString();
        std::copy_n(u"tel:", 4, reinterpret_cast<char16_t *>(kept.data()));
        kept.truncate(out - kept.constData());
        return kept;
    }
    text::forEachCharacter(phone, [&kept](QStringView cluster) {
        if (text::isNumeric(text::firstCodePoint(cluster)) || isSingle(cluster, u'+'))
            kept.append(cluster);
    });
    return kept.isEmpty() ? QString() : QStringLiteral("tel:") + kept;
}

QList<DetailItem> buildDetails(const MailComposerData &data) {
    const QString *pairs[4][2] = {{&data.detailLabel1, &data.detailValue1},
                                  {&data.detailLabel2, &data.detailValue2},
                                  {&data.detailLabel3, &data.detailValue3},
                                  {&data.detailLabel4, &data.detailValue4}};
    QList<DetailItem> details;
    details.reserve(4);
    for (const auto &pair : pairs) {
        QString label = text::trimmed(*pair[0]);
        QString value = text::trimmed(*pair[1]);
        if (label.isEmpty() && value.isEmpty())
            continue;
        if (label.isEmpty())
            label = QStringLiteral("Detail");
        if (value.isEmpty())
            value = QStringLiteral("-");
        details.append(DetailItem(std::move(label), std::move(value)));
    }
    return details;
}

QStringList textParagraphs(const QString &text) {
    const QStringView whole = text::trimmedView(text);
    if (whole.isEmpty())
        return {};
    const char16_t *const begin = whole.utf16();
    const char16_t *const end = begin + whole.size();
    if (findLineBreak(begin, end) == end)
        return {whole.size() == text.size() ? text : whole.toString()};

    // Folding the lines (a non-blank line overwrites the pending blank-line separator
    // before it, consecutive blank lines leave one separator), splitting at separators and
    // joining each group with line feeds leaves no separator inside the trimmed text: the
    // result is a single paragraph of the non-blank lines, each trimmed, one per line.
    QString paragraph;
    paragraph.reserve(whole.size());
    for (const char16_t *lineStart = begin; lineStart <= end;) {
        const char16_t *lineEnd = findLineBreak(lineStart, end);
        const QStringView line = text::trimmedView(QStringView(lineStart, lineEnd));
        if (!line.isEmpty()) {
            if (!paragraph.isEmpty())
                paragraph.append(u'\n');
            paragraph.append(line);
        }
        lineStart = lineEnd + 1;
    }
    return {paragraph};
}

QString escapeHTML(const QString &text) {
    TextBuffer out(text.size() + 16);
    out.appendEscaped(text);
    return out.take();
}

} // namespace velino::render
