#pragma once

#include <QString>
#include <QStringView>
#include <QTextBoundaryFinder>

namespace velino::text {

// White space and line breaks: U+0009..U+000D, U+0085 and every Unicode separator
// (general category Z: spaces, line and paragraph separators, U+00A0 included).
bool isTrimmableBeyondAscii(char32_t c);
inline bool isTrimmable(char32_t c) {
    if (c < 0x80)
        return c == 0x20 || (c >= 0x09 && c <= 0x0D);
    return isTrimmableBeyondAscii(c);
}

// Removes trimmable code points at both ends; inner characters are untouched.
QStringView trimmedViewSlow(QStringView s);
inline QStringView trimmedView(QStringView s) {
    // Most texts start and end with a visible character: nothing to remove.
    if (s.isEmpty() || (!isTrimmable(s.front().unicode()) && !isTrimmable(s.back().unicode())))
        return s;
    return trimmedViewSlow(s);
}
QString trimmed(const QString &s);

// Empty after trimming.
bool isBlank(QStringView s);

// Letter and number tests on one code point, as used on the first code point of a
// user-perceived character.
bool isLetter(char32_t c);
bool isNumber(char32_t c);

// Value of an ASCII hexadecimal digit (either case), or -1.
constexpr int hexDigitValue(char32_t c) {
    if (c >= '0' && c <= '9')
        return static_cast<int>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<int>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<int>(c - 'A' + 10);
    return -1;
}

// Number of user-perceived characters (extended grapheme clusters).
qsizetype characterCount(const QString &s);

// Calls visit(QStringView cluster) once per user-perceived character, in order.
template <typename Visit> void forEachCharacter(const QString &s, Visit &&visit);

// First code point of a non-empty view.
char32_t firstCodePoint(QStringView cluster);

// Every code unit below 0x80.
bool isAscii(QStringView s);

// True when the text is known to be in normalisation form C without computing it: every
// code point below U+0300 is its own form C.
bool isCertainlyNfc(QStringView s);

// Canonical equivalence: equal NFC forms.
bool canonicallyEqual(const QString &a, const QString &b);

// Unicode lower-casing and upper-casing of the whole text (full case mappings).
QString lowerCased(const QString &s);
QString upperCased(const QString &s);

template <typename Visit> void forEachCharacter(const QString &s, Visit &&visit) {
    const qsizetype n = s.size();
    if (isAscii(s)) {
        // In ASCII every character is a cluster of its own, except CR LF.
        for (qsizetype i = 0; i < n;) {
            const qsizetype len = (s[i] == u'\r' && i + 1 < n && s[i + 1] == u'\n') ? 2 : 1;
            visit(QStringView(s).mid(i, len));
            i += len;
        }
        return;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, s);
    qsizetype start = 0;
    while (start < n) {
        qsizetype end = finder.toNextBoundary();
        if (end <= start)
            end = n;
        visit(QStringView(s).mid(start, end - start));
        start = end;
    }
}

} // namespace velino::text
