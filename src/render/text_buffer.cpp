#include "text_buffer.h"

#include <algorithm>

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
