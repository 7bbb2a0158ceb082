#include "json_writer.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace velino {

JsonWriter::JsonWriter(qsizetype capacity) {
    grow(capacity);
}

void JsonWriter::grow(qsizetype extra) {
    const qsizetype used = cursor_ - begin_;
    const qsizetype capacity = std::max(used + extra, 2 * static_cast<qsizetype>(end_ - begin_));
    out_.resize(capacity); // new bytes are left uninitialised
    begin_ = out_.data();
    cursor_ = begin_ + used;
    end_ = begin_ + capacity;
}

QByteArray JsonWriter::take() {
    out_.resize(cursor_ - begin_);
    begin_ = cursor_ = end_ = nullptr;
    return std::move(out_);
}

void JsonWriter::put(const char *text, qsizetype length) {
    reserve(length);
    std::memcpy(cursor_, text, static_cast<size_t>(length));
    cursor_ += length;
}

void JsonWriter::separate() {
    if (needsComma_)
        put(',');
    needsComma_ = true;
}

void JsonWriter::beginObject() {
    separate();
    put('{');
    needsComma_ = false;
}

void JsonWriter::endObject() {
    put('}');
    needsComma_ = true;
}

void JsonWriter::beginArray() {
    separate();
    put('[');
    needsComma_ = false;
}

void JsonWriter::endArray() {
    put(']');
    needsComma_ = true;
}

void JsonWriter::key(QStringView name) {
    separate();
    writeEscaped(name);
    put(':');
    needsComma_ = false;
}

void JsonWriter::string(QStringView value) {
    separate();
    writeEscaped(value);
}

void JsonWriter::number(double value) {
    separate();
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    put(buffer, result.ptr - buffer);
}

void JsonWriter::number(qint64 value) {
    separate();
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    put(buffer, result.ptr - buffer);
}

void JsonWriter::boolean(bool value) {
    separate();
    if (value)
        put("true", 4);
    else
        put("false", 5);
}

namespace {

bool isPlainAscii(char16_t c) {
    return c >= 0x20 && c < 0x80 && c != u'"' && c != u'\\';
}

} // namespace

void JsonWriter::writeEscaped(QStringView value) {
    static constexpr char hex[] = "0123456789abcdef";
    // Worst cases: six bytes for a control character, three for a BMP character in UTF-8.
    reserve(value.size() * 6 + 2);
    char *out = cursor_;
    *out++ = '"';
    const char16_t *p = value.utf16();
    const char16_t *const end = p + value.size();
    while (p < end) {
        while (p < end && isPlainAscii(*p))
            *out++ = static_cast<char>(*p++);
        if (p == end)
            break;
        const char16_t c = *p;
        if (c == u'"' || c == u'\\') {
            *out++ = '\\';
            *out++ = static_cast<char>(c);
            ++p;
        } else if (c < 0x20) {
            *out++ = '\\';
            switch (c) {
            case u'\n':
                *out++ = 'n';
                break;
            case u'\r':
                *out++ = 'r';
                break;
            case u'\t':
                *out++ = 't';
                break;
            case u'\b':
                *out++ = 'b';
                break;
            case u'\f':
                *out++ = 'f';
                break;
            default:
                *out++ = 'u';
                *out++ = '0';
                *out++ = '0';
                *out++ = hex[c >> 4];
                *out++ = hex[c & 15];
            }
            ++p;
        } else if (c < 0x800) {
            *out++ = static_cast<char>(0xC0 | (c >> 6));
            *out++ = static_cast<char>(0x80 | (c & 0x3F));
            ++p;
        } else if (QChar::isHighSurrogate(c) && p + 1 < end && QChar::isLowSurrogate(p[1])) {
            const char32_t u = QChar::surrogateToUcs4(c, p[1]);
            *out++ = static_cast<char>(0xF0 | (u >> 18));
            *out++ = static_cast<char>(0x80 | ((u >> 12) & 0x3F));
            *out++ = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
            *out++ = static_cast<char>(0x80 | (u & 0x3F));
            p += 2;
        } else {
            // A lone surrogate has no UTF-8 form: it is written as U+FFFD.
            const char16_t u = QChar::isSurrogate(c) ? char16_t(0xFFFD) : c;
            *out++ = static_cast<char>(0xE0 | (u >> 12));
            *out++ = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
            *out++ = static_cast<char>(0x80 | (u & 0x3F));
            ++p;
        }
    }
    *out++ = '"';
    cursor_ = out;
}

} // namespace velino
