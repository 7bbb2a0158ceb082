#include "json_writer.h"

#include <charconv>

namespace velino {

void JsonWriter::separate() {
    if (needsComma_)
        out_.append(',');
    needsComma_ = true;
}

void JsonWriter::beginObject() {
    separate();
    out_.append('{');
    needsComma_ = false;
}

void JsonWriter::endObject() {
    out_.append('}');
    needsComma_ = true;
}

void JsonWriter::beginArray() {
    separate();
    out_.append('[');
    needsComma_ = false;
}

void JsonWriter::endArray() {
    out_.append(']');
    needsComma_ = true;
}

void JsonWriter::key(QStringView name) {
    separate();
    writeEscaped(name);
    out_.append(':');
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
    out_.append(buffer, result.ptr - buffer);
}

void JsonWriter::number(qint64 value) {
    separate();
    out_.append(QByteArray::number(value));
}

void JsonWriter::boolean(bool value) {
    separate();
    out_.append(value ? "true" : "false");
}

void JsonWriter::writeEscaped(QStringView value) {
    static constexpr char hex[] = "0123456789abcdef";
    out_.append('"');
    const char16_t *p = value.utf16();
    const char16_t *const end = p + value.size();
    while (p < end) {
        // Plain ASCII runs are the common case: copy them as they are.
        const char16_t *run = p;
        while (run < end && *run >= 0x20 && *run < 0x80 && *run != u'"' && *run != u'\\')
            ++run;
        if (run > p) {
            const qsizetype start = out_.size();
            out_.resize(start + (run - p));
            char *dst = out_.data() + start;
            for (const char16_t *q = p; q < run; ++q)
                *dst++ = static_cast<char>(*q);
            p = run;
            continue;
        }
        const char16_t c = *p;
        if (c == u'"' || c == u'\\') {
            out_.append('\\').append(static_cast<char>(c));
            ++p;
        } else if (c < 0x20) {
            switch (c) {
            case u'\n':
                out_.append("\\n");
                break;
            case u'\r':
                out_.append("\\r");
                break;
            case u'\t':
                out_.append("\\t");
                break;
            case u'\b':
                out_.append("\\b");
                break;
            case u'\f':
                out_.append("\\f");
                break;
            default:
                out_.append("\\u00").append(hex[c >> 4]).append(hex[c & 15]);
            }
            ++p;
        } else {
            // Everything else as UTF-8, up to the next ASCII character.
            const char16_t *wide = p;
            while (wide < end && *wide >= 0x80)
                ++wide;
            out_.append(QStringView(p, wide).toUtf8());
            p = wide;
        }
    }
    out_.append('"');
}

} // namespace velino
