#include "text.h"

#include <QChar>

#include <algorithm>
#include <cstring>

namespace velino::text {

bool isTrimmableBeyondAscii(char32_t c) {
    if (c == 0x85)
        return true;
    if (c < 0xA0)
        return false;
    switch (QChar::category(c)) {
    case QChar::Separator_Space:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QStringView trimmedViewSlow(QStringView s) {
    // Every separator lies in the basic plane, so code units can be tested one by one.
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && isTrimmable(s[begin].unicode()))
        ++begin;
    while (end > begin && isTrimmable(s[end - 1].unicode()))
        --end;
    return s.mid(begin, end - begin);
}

QString trimmed(const QString &s) {
    const QStringView view = trimmedView(s);
    if (view.size() == s.size())
        return s;
    return view.toString();
}

bool isBlank(QStringView s) {
    return trimmedView(s).isEmpty();
}

bool isLetter(char32_t c) {
    if (c < 0x80)
        return (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
    return QChar::isLetter(c);
}

bool isNumber(char32_t c) {
    if (c < 0x80)
        return c >= '0' && c <= '9';
    return QChar::isNumber(c);
}

char32_t firstCodePoint(QStringView cluster) {
    const QChar first = cluster.front();
    if (first.isHighSurrogate() && cluster.size() > 1 && cluster[1].isLowSurrogate())
        return QChar::surrogateToUcs4(first, cluster[1]);
    return first.unicode();
}

qsizetype characterCount(const QString &s) {
    if (isAscii(s))
        return s.size() - s.count(QLatin1StringView("\r\n"));
    qsizetype count = 0;
    forEachCharacter(s, [&count](QStringView) { ++count; });
    return count;
}

bool isCertainlyNfc(QStringView s) {
    return std::all_of(s.begin(), s.end(), [](QChar c) { return c.unicode() < 0x300; });
}

bool canonicallyEqual(const QString &a, const QString &b) {
    if (a == b)
        return true;
    if (isCertainlyNfc(a) && isCertainlyNfc(b))
        return false;
    return a.normalized(QString::NormalizationForm_C) == b.normalized(QString::NormalizationForm_C);
}

QString lowerCased(const QString &s) {
    return s.toLower();
}
QString upperCased(const QString &s) {
    return s.toUpper();
}

bool isAscii(QStringView s) {
    const char16_t *p = s.utf16();
    const char16_t *const end = p + s.size();
    // Four code units at a time: any bit above the low seven marks a non-ASCII unit.
    for (; end - p >= 4; p += 4) {
        quint64 word;
        std::memcpy(&word, p, sizeof word);
        if (word & 0xFF80FF80FF80FF80ULL)
            return false;
    }
    for (; p < end; ++p) {
        if (*p >= 0x80)
            return false;
    }
    return true;
}

} // namespace velino::text
