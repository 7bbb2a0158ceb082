#include "text.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace velino::text {

bool isWhiteSpaceBeyondAscii(char32_t c) {
    return u_isUWhiteSpace(static_cast<UChar32>(c));
}

QStringView trimmedViewSlow(QStringView s) {
    // Every White_Space code point lies in the basic plane, so code units can be tested
    // one by one.
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && isWhiteSpace(s[begin].unicode()))
        ++begin;
    while (end > begin && isWhiteSpace(s[end - 1].unicode()))
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

bool isAlphabetic(char32_t c) {
    if (c < 0x80)
        return (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_ALPHABETIC);
}

bool isNumeric(char32_t c) {
    if (c < 0x80)
        return c >= '0' && c <= '9';
    return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

char32_t firstCodePoint(QStringView cluster) {
    const QChar first = cluster.front();
    if (first.isHighSurrogate() && cluster.size() > 1 && cluster[1].isLowSurrogate())
        return QChar::surrogateToUcs4(first, cluster[1]);
    return first.unicode();
}

void forEachGraphemeCluster(QStringView s, void (*visit)(void *context, QStringView cluster),
                            void *context) {
    // Opening a break iterator loads its rules; a clone per thread is cheap to reuse.
    thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> created(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status))
            created.reset();
        return created;
    }();
    const qsizetype n = s.size();
    if (!iterator) {
        // ICU data missing: one cluster per code point rather than nothing.
        for (qsizetype i = 0; i < n;) {
            const qsizetype len = (s[i].isHighSurrogate() && i + 1 < n) ? 2 : 1;
            visit(context, s.mid(i, len));
            i += len;
        }
        return;
    }
    // A read-only alias: the text is not copied.
    const icu::UnicodeString alias(false, reinterpret_cast<const UChar *>(s.utf16()),
                                   static_cast<int32_t>(n));
    iterator->setText(alias);
    qsizetype start = iterator->first();
    for (int32_t end = iterator->next(); end != icu::BreakIterator::DONE; end = iterator->next()) {
        visit(context, s.mid(start, end - start));
        start = end;
    }
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

QString nfc(const QString &s) {
    if (isCertainlyNfc(s))
        return s;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return s.normalized(QString::NormalizationForm_C);
    const icu::UnicodeString source(false, reinterpret_cast<const UChar *>(s.utf16()),
                                    static_cast<int32_t>(s.size()));
    const icu::UnicodeString result = normalizer->normalize(source, status);
    if (U_FAILURE(status))
        return s.normalized(QString::NormalizationForm_C);
    return QString(reinterpret_cast<const QChar *>(result.getBuffer()), result.length());
}

bool canonicallyEqual(const QString &a, const QString &b) {
    if (a == b)
        return true;
    if (isCertainlyNfc(a) && isCertainlyNfc(b))
        return false;
    return nfc(a) == nfc(b);
}

namespace {

using IcuCaseMapping = int32_t (*)(UChar *, int32_t, const UChar *, int32_t, const char *,
                                   UErrorCode *);

QString caseMapped(const QString &s, IcuCaseMapping map) {
    // Full mappings can lengthen the text (three code units per unit at most).
    QString out(s.size() + 16, Qt::Uninitialized);
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length =
            map(reinterpret_cast<UChar *>(out.data()), static_cast<int32_t>(out.size()),
                reinterpret_cast<const UChar *>(s.utf16()), static_cast<int32_t>(s.size()), "",
                &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            out.resize(length);
            continue;
        }
        if (U_FAILURE(status))
            return s;
        out.truncate(length);
        return out;
    }
    return s;
}

} // namespace

QString lowerCased(const QString &s) {
    if (isAscii(s))
        return s.toLower();
    return caseMapped(s, u_strToLower);
}

QString upperCased(const QString &s) {
    if (isAscii(s))
        return s.toUpper();
    return caseMapped(s, u_strToUpper);
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
