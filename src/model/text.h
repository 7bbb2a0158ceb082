#pragma once

#include <QString>
#include <QStringView>

#include <type_traits>

namespace velino::text {

// Unicode White_Space: U+0009..U+000D, U+0020, U+0085, U+00A0 and the separators of
// general category Z. The same set is trimmed from texts and collapsed in preset names.
bool isWhiteSpaceBeyondAscii(char32_t c);
inline bool isWhiteSpace(char32_t c) {
    if (c < 0x80)
        return c == 0x20 || (c >= 0x09 && c <= 0x0D);
    return isWhiteSpaceBeyondAscii(c);
}

// Removes white space at both ends; inner characters are untouched.
QStringView trimmedViewSlow(QStringView s);
inline QStringView trimmedView(QStringView s) {
    // Most texts start and end with a visible character: nothing to remove.
    if (s.isEmpty() || (!isWhiteSpace(s.front().unicode()) && !isWhiteSpace(s.back().unicode())))
        return s;
    return trimmedViewSlow(s);
}
QString trimmed(const QString &s);

// Empty after trimming.
bool isBlank(QStringView s);

// The Unicode Alphabetic property (letters, and symbols such as circled letters) and a
// Unicode numeric value (Numeric_Type not None), tested on one code point: the first one
// of a user-perceived character.
bool isAlphabetic(char32_t c);
bool isNumeric(char32_t c);

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
template <typename Visit> void forEachCharacter(QStringView s, Visit &&visit);

// First code point of a non-empty view.
char32_t firstCodePoint(QStringView cluster);

// Every code unit below 0x80.
bool isAscii(QStringView s);

// True when the text is known to be in normalisation form C without computing it: every
// code point below U+0300 is its own form C.
bool isCertainlyNfc(QStringView s);

// The text in normalisation form C.
QString nfc(const QString &s);

// Canonical equivalence: equal NFC forms.
bool canonicallyEqual(const QString &a, const QString &b);

// Unicode lower-casing and upper-casing of the whole text with the full, context-sensitive
// mappings of the root locale (final sigma, sharp s to "SS").
QString lowerCased(const QString &s);
QString upperCased(const QString &s);

// Extended grapheme cluster boundaries beyond ASCII, by the Unicode rules (UAX #29):
// calls visit(context, cluster) for each cluster of s.
void forEachGraphemeCluster(QStringView s, void (*visit)(void *context, QStringView cluster),
                            void *context);

template <typename Visit> void forEachCharacter(QStringView s, Visit &&visit) {
    const qsizetype n = s.size();
    if (isAscii(s)) {
        // In ASCII every character is a cluster of its own, except CR LF.
        for (qsizetype i = 0; i < n;) {
            const qsizetype len = (s[i] == u'\r' && i + 1 < n && s[i + 1] == u'\n') ? 2 : 1;
            visit(s.mid(i, len));
            i += len;
        }
        return;
    }
    using VisitType = std::remove_reference_t<Visit>;
    forEachGraphemeCluster(
        s,
        [](void *context, QStringView cluster) { (*static_cast<VisitType *>(context))(cluster); },
        const_cast<void *>(static_cast<const void *>(&visit)));
}

} // namespace velino::text
