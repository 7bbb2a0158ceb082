#include "json_cursor.h"

#include "json_reader.h"
#include "text.h"

#include <charconv>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velino {
namespace {

constexpr int kMaxDepth = 512;

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// First byte that ends a plain run inside a string: a quote, a backslash or a control byte.
const char *findStringSpecial(const char *p, const char *end) {
#if defined(__SSE2__)
    const __m128i quote = _mm_set1_epi8('"');
    const __m128i backslash = _mm_set1_epi8('\\');
    const __m128i controlLimit = _mm_set1_epi8(0x20);
    for (; end - p >= 16; p += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        // Bytes from 0x80 are negative in a signed compare: exclude them from "control".
        const __m128i control = _mm_andnot_si128(_mm_cmplt_epi8(v, _mm_setzero_si128()),
                                                 _mm_cmplt_epi8(v, controlLimit));
        const __m128i hits = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(v, quote), _mm_cmpeq_epi8(v, backslash)), control);
        const int bits = _mm_movemask_epi8(hits);
        if (bits != 0)
            return p + __builtin_ctz(static_cast<unsigned>(bits));
    }
#endif
    while (p < end && *p != '"' && *p != '\\' && static_cast<unsigned char>(*p) >= 0x20)
        ++p;
    return p;
}

void appendUtf8(QByteArray *out, char32_t u) {
    if (u < 0x80) {
        out->append(static_cast<char>(u));
    } else if (u < 0x800) {
        out->append(static_cast<char>(0xC0 | (u >> 6)));
        out->append(static_cast<char>(0x80 | (u & 0x3F)));
    } else if (u < 0x10000) {
        out->append(static_cast<char>(0xE0 | (u >> 12)));
        out->append(static_cast<char>(0x80 | ((u >> 6) & 0x3F)));
        out->append(static_cast<char>(0x80 | (u & 0x3F)));
    } else {
        out->append(static_cast<char>(0xF0 | (u >> 18)));
        out->append(static_cast<char>(0x80 | ((u >> 12) & 0x3F)));
        out->append(static_cast<char>(0x80 | ((u >> 6) & 0x3F)));
        out->append(static_cast<char>(0x80 | (u & 0x3F)));
    }
}

} // namespace

const char *jsonCursorTypeName(JsonCursor::Type type) {
    switch (type) {
    case JsonCursor::Type::Object:
        return "objet";
    case JsonCursor::Type::Array:
        return "tableau";
    case JsonCursor::Type::String:
        return "texte";
    case JsonCursor::Type::Number:
        return "nombre";
    case JsonCursor::Type::Bool:
        return "booleen";
    case JsonCursor::Type::Null:
        return "null";
    case JsonCursor::Type::Invalid:
        break;
    }
    return "valeur invalide";
}

bool checkMemberType(JsonCursor &cursor, JsonCursor::Type expected, const char *expectedName,
                     const MemberPath &path, QString *error) {
    const JsonCursor::Type type = cursor.peek();
    if (type == expected)
        return true;
    if (type == JsonCursor::Type::Invalid) {
        cursor.skipValue(); // records where the document goes wrong
        *error = cursor.error();
    } else if (type == JsonCursor::Type::Null) {
        *error = nullKeyMessage(path.toString());
    } else {
        *error = wrongTypeMessage(path.toString(), expectedName, jsonCursorTypeName(type));
    }
    return false;
}

bool readStringMember(JsonCursor &cursor, const MemberPath &path, QString *value, QString *error) {
    if (!checkMemberType(cursor, JsonCursor::Type::String, "texte", path, error))
        return false;
    if (!cursor.readString(value)) {
        *error = cursor.error();
        return false;
    }
    return true;
}

JsonCursor::JsonCursor(QByteArrayView json)
    : begin_(json.data()), p_(json.data()), end_(json.data() + json.size()) {
    if (!json.isEmpty() && !QUtf8StringView(json).isValidUtf8())
        fail("UTF-8 invalide");
}

bool JsonCursor::fail(const char *reason) {
    if (error_.isEmpty())
        error_ = QStringLiteral("JSON invalide a l'octet %1 : %2")
                     .arg(p_ - begin_)
                     .arg(QLatin1String(reason));
    p_ = end_;
    return false;
}

void JsonCursor::skipSpace() {
    while (p_ < end_ && isSpace(*p_))
        ++p_;
}

bool JsonCursor::expect(char c, const char *reason) {
    skipSpace();
    if (p_ >= end_ || *p_ != c)
        return fail(reason);
    ++p_;
    return true;
}

JsonCursor::Type JsonCursor::peek() {
    if (!ok())
        return Type::Invalid;
    skipSpace();
    if (p_ >= end_)
        return Type::Invalid;
    switch (*p_) {
    case '{':
        return Type::Object;
    case '[':
        return Type::Array;
    case '"':
        return Type::String;
    case 't':
    case 'f':
        return Type::Bool;
    case 'n':
        return Type::Null;
    default:
        return (*p_ == '-' || isDigit(*p_)) ? Type::Number : Type::Invalid;
    }
}

bool JsonCursor::open(char bracket, const char *reason) {
    if (++depth_ > kMaxDepth)
        return fail("imbrication trop profonde");
    first_ = true;
    return expect(bracket, reason);
}

bool JsonCursor::nextItem(char closingBracket) {
    if (!ok())
        return false;
    skipSpace();
    if (p_ < end_ && *p_ == closingBracket) {
        ++p_;
        --depth_;
        first_ = false;
        return false;
    }
    if (!first_ && !expect(',', "virgule manquante entre deux valeurs"))
        return false;
    first_ = false;
    return true;
}

bool JsonCursor::beginObject() {
    return open('{', "objet attendu");
}

bool JsonCursor::nextMember(QByteArrayView *key) {
    if (!nextItem('}'))
        return false;
    skipSpace();
    if (p_ >= end_ || *p_ != '"')
        return fail("nom de cle attendu");
    const char *start = p_ + 1;
    const char *special = findStringSpecial(start, end_);
    if (special < end_ && *special == '"') {
        *key = QByteArrayView(start, special - start);
        p_ = special + 1;
    } else {
        if (!readRawString(&keyBuffer_))
            return false;
        *key = keyBuffer_;
    }
    return expect(':', "deux-points manquant apres une cle");
}

bool JsonCursor::beginArray() {
    return open('[', "tableau attendu");
}

bool JsonCursor::nextElement() {
    return nextItem(']');
}

bool JsonCursor::readRawString(QByteArray *utf8) {
    // At the opening quote.
    ++p_;
    utf8->clear();
    for (;;) {
        const char *special = findStringSpecial(p_, end_);
        utf8->append(p_, special - p_);
        p_ = special;
        if (p_ >= end_)
            return fail("texte non termine");
        if (*p_ == '"') {
            ++p_;
            return true;
        }
        if (*p_ != '\\')
            return fail("caractere de controle dans un texte");
        if (end_ - p_ < 2)
            return fail("texte non termine");
        const char code = p_[1];
        p_ += 2;
        switch (code) {
        case '"':
        case '\\':
        case '/':
            utf8->append(code);
            break;
        case 'b':
            utf8->append('\b');
            break;
        case 'f':
            utf8->append('\f');
            break;
        case 'n':
            utf8->append('\n');
            break;
        case 'r':
            utf8->append('\r');
            break;
        case 't':
            utf8->append('\t');
            break;
        case 'u': {
            const auto readUnit = [this](char32_t *unit) {
                if (end_ - p_ < 4)
                    return false;
                char32_t value = 0;
                for (int i = 0; i < 4; ++i) {
                    const int digit = text::hexDigitValue(static_cast<unsigned char>(p_[i]));
                    if (digit < 0)
                        return false;
                    value = value * 16 + static_cast<char32_t>(digit);
                }
                p_ += 4;
                *unit = value;
                return true;
            };
            char32_t unit = 0;
            if (!readUnit(&unit))
                return fail("sequence d'echappement illegale");
            if (unit >= 0xD800 && unit < 0xDC00 && end_ - p_ >= 6 && p_[0] == '\\' &&
                p_[1] == 'u') {
                const char *save = p_;
                p_ += 2;
                char32_t low = 0;
                if (readUnit(&low) && low >= 0xDC00 && low < 0xE000) {
                    unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                } else {
                    p_ = save;
                }
            }
            // A lone surrogate has no UTF-8 form: it reads as U+FFFD.
            if (unit >= 0xD800 && unit < 0xE000)
                unit = 0xFFFD;
            appendUtf8(utf8, unit);
            break;
        }
        default:
            return fail("sequence d'echappement illegale");
        }
    }
}

bool JsonCursor::readString(QString *value) {
    skipSpace();
    if (p_ >= end_ || *p_ != '"')
        return fail("texte attendu");
    // Fast path: no escape, converted straight from the document.
    const char *start = p_ + 1;
    const char *special = findStringSpecial(start, end_);
    if (special < end_ && *special == '"') {
        *value = QString::fromUtf8(start, special - start);
        p_ = special + 1;
        return true;
    }
    QByteArray utf8;
    if (!readRawString(&utf8))
        return false;
    *value = QString::fromUtf8(utf8);
    return true;
}

bool JsonCursor::readNumber(double *value, bool *isInteger) {
    skipSpace();
    const char *start = p_;
    bool integer = true;
    if (p_ < end_ && *p_ == '-')
        ++p_;
    if (p_ >= end_ || !isDigit(*p_))
        return fail("nombre illegal");
    if (*p_ == '0') {
        ++p_;
    } else {
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    }
    if (p_ < end_ && *p_ == '.') {
        integer = false;
        ++p_;
        if (p_ >= end_ || !isDigit(*p_))
            return fail("nombre illegal");
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    }
    if (p_ < end_ && (*p_ == 'e' || *p_ == 'E')) {
        integer = false;
        ++p_;
        if (p_ < end_ && (*p_ == '+' || *p_ == '-'))
            ++p_;
        if (p_ >= end_ || !isDigit(*p_))
            return fail("nombre illegal");
        while (p_ < end_ && isDigit(*p_))
            ++p_;
    }
    double parsed = 0;
    const auto result = std::from_chars(start, p_, parsed);
    if (result.ec != std::errc() || !std::isfinite(parsed))
        return fail("nombre hors limites");
    *value = parsed;
    if (isInteger)
        *isInteger = integer;
    return true;
}

bool JsonCursor::readLiteral(const char *literal, qsizetype length) {
    if (end_ - p_ < length || std::memcmp(p_, literal, static_cast<size_t>(length)) != 0)
        return fail("valeur illegale");
    p_ += length;
    return true;
}

bool JsonCursor::readBool(bool *value) {
    skipSpace();
    if (p_ < end_ && *p_ == 't') {
        *value = true;
        return readLiteral("true", 4);
    }
    *value = false;
    return readLiteral("false", 5);
}

bool JsonCursor::readNull() {
    skipSpace();
    return readLiteral("null", 4);
}

bool JsonCursor::skipValue() {
    switch (peek()) {
    case Type::Object: {
        if (!beginObject())
            return false;
        QByteArrayView key;
        while (nextMember(&key)) {
            if (!skipValue())
                return false;
        }
        return ok();
    }
    case Type::Array:
        if (!beginArray())
            return false;
        while (nextElement()) {
            if (!skipValue())
                return false;
        }
        return ok();
    case Type::String: {
        QByteArray ignored;
        return readRawString(&ignored);
    }
    case Type::Number: {
        double ignored = 0;
        return readNumber(&ignored);
    }
    case Type::Bool: {
        bool ignored = false;
        return readBool(&ignored);
    }
    case Type::Null:
        return readNull();
    case Type::Invalid:
        break;
    }
    return fail(p_ >= end_ ? "fin inattendue du document" : "valeur illegale");
}

bool JsonCursor::finish() {
    skipSpace();
    if (p_ != end_)
        return fail("contenu en trop apres le document");
    return ok();
}

} // namespace velino
