#include "text_buffer.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velino::render {

void TextBuffer::grow(qsizetype needed) {
    const qsizetype used = size();
    const qsizetype capacity = std::max(needed, 2 * static_cast<qsizetype>(end_ - begin_));
    buffer_.resize(capacity); // new characters are left uninitialised
    begin_ = reinterpret_cast<char16_t *>(buffer_.data());
    cursor_ = begin_ + used;
    end_ = begin_ + capacity;
}

namespace {

// Characters below 64 that escaping replaces: & < > " ' and, for paragraphs, the line feed.
constexpr quint64 kEntityMask =
    (1ULL << '&') | (1ULL << '<') | (1ULL << '>') | (1ULL << '"') | (1ULL << '\'');
constexpr quint64 kEntityOrLineFeedMask = kEntityMask | (1ULL << '\n');

bool isEscapable(char16_t c, quint64 mask) {
    return c < 64 && ((mask >> c) & 1);
}

// First character that escaping replaces, or end.
const char16_t *findEscapable(const char16_t *p, const char16_t *end, quint64 mask) {
#if defined(__SSE2__)
    // Eight code units per step: compare against each replaced character at once.
    const __m128i amp = _mm_set1_epi16('&');
    const __m128i lt = _mm_set1_epi16('<');
    const __m128i gt = _mm_set1_epi16('>');
    const __m128i quot = _mm_set1_epi16('"');
    const __m128i apos = _mm_set1_epi16('\'');
    const __m128i lf = _mm_set1_epi16(mask == kEntityOrLineFeedMask ? '\n' : '&');
    for (; end - p >= 8; p += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i hits = _mm_or_si128(
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(v, amp), _mm_cmpeq_epi16(v, lt)),
                         _mm_or_si128(_mm_cmpeq_epi16(v, gt), _mm_cmpeq_epi16(v, quot))),
            _mm_or_si128(_mm_cmpeq_epi16(v, apos), _mm_cmpeq_epi16(v, lf)));
        const int bits = _mm_movemask_epi8(hits);
        if (bits != 0)
            return p + __builtin_ctz(static_cast<unsigned>(bits)) / 2;
    }
#endif
    while (p < end && !isEscapable(*p, mask))
        ++p;
    return p;
}

} // namespace

void TextBuffer::appendEscaped(QStringView text, LineFeeds lineFeeds) {
    // "&quot;" is the longest replacement: six characters for one.
    reserve(text.size() * 6);
    const quint64 mask = lineFeeds == LineFeeds::AsBreaks ? kEntityOrLineFeedMask : kEntityMask;
    const char16_t *from = text.utf16();
    const char16_t *const end = from + text.size();
    char16_t *out = cursor_;
    const auto put = [&out](const char16_t *piece, qsizetype length) {
        std::memcpy(out, piece, static_cast<size_t>(length) * sizeof(char16_t));
        out += length;
    };
    while (from < end) {
        const char16_t *special = findEscapable(from, end, mask);
        put(from, special - from);
        if (special == end)
            break;
        switch (*special) {
        case u'&':
            put(u"&amp;", 5);
            break;
        case u'<':
            put(u"&lt;", 4);
            break;
        case u'>':
            put(u"&gt;", 4);
            break;
        case u'"':
            put(u"&quot;", 6);
            break;
        case u'\'':
            put(u"&#39;", 5);
            break;
        default: // line feed written as a break
            put(u"<br>", 4);
            break;
        }
        from = special + 1;
    }
    cursor_ = out;
}

} // namespace velino::render
