#include "json_syntax.h"

#include "text.h"

#include <cstring>

namespace velino {
namespace {

// Deeper documents are refused before the object model would refuse them.
constexpr int kMaxDepth = 512;

class SyntaxChecker {
public:
    explicit SyntaxChecker(QByteArrayView bytes)
        : begin_(bytes.data()), p_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    bool document() {
        skipSpace();
        if (!value(0))
            return false;
        skipSpace();
        if (p_ != end_)
            return fail(nonAscii() ? strayNonAscii() : "contenu en trop apres le document");
        return true;
    }

    QString error() const {
        return QStringLiteral("JSON invalide a l'octet %1 : %2")
            .arg(p_ - begin_)
            .arg(QLatin1StringView(reason_));
    }

private:
    bool fail(const char *reason) {
        reason_ = reason;
        return false;
    }
    bool atEnd() const { return p_ >= end_; }
    bool nonAscii() const { return !atEnd() && static_cast<unsigned char>(*p_) >= 0x80; }
    void skipSpace() {
        while (p_ < end_ && (*p_ == ' ' || *p_ == '\t' || *p_ == '\n' || *p_ == '\r'))
            ++p_;
    }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    // A byte from 0x80 outside any string: say whether it is not even UTF-8.
    const char *strayNonAscii() {
        const char *at = p_;
        const bool isUtf8 = utf8Sequence();
        p_ = at;
        return isUtf8 ? "caractere inattendu hors d'un texte" : "UTF-8 invalide";
    }

    bool value(int depth) {
        if (atEnd())
            return fail("fin inattendue du document");
        switch (*p_) {
        case '{':
            return object(depth + 1);
        case '[':
            return array(depth + 1);
        case '"':
            return string();
        case 't':
            return literal("true");
        case 'f':
            return literal("false");
        case 'n':
            return literal("null");
        default:
            if (*p_ == '-' || isDigit(*p_))
                return number();
            return fail(nonAscii() ? strayNonAscii() : "valeur illegale");
        }
    }

    bool literal(const char *word) {
        const auto length = static_cast<qsizetype>(std::strlen(word));
        if (end_ - p_ < length || std::memcmp(p_, word, static_cast<size_t>(length)) != 0)
            return fail("valeur illegale");
        p_ += length;
        return true;
    }

    bool digits() {
        if (atEnd() || !isDigit(*p_))
            return false;
        while (p_ < end_ && isDigit(*p_))
            ++p_;
        return true;
    }

    bool number() {
        if (*p_ == '-')
            ++p_;
        if (atEnd() || !isDigit(*p_))
            return fail("nombre illegal");
        if (*p_ == '0') {
            ++p_;
            if (!atEnd() && isDigit(*p_))
                return fail("zero en tete d'un nombre");
        } else {
            digits();
        }
        if (!atEnd() && *p_ == '.') {
            ++p_;
            if (!digits())
                return fail("chiffre attendu apres le point d'un nombre");
        }
        if (!atEnd() && (*p_ == 'e' || *p_ == 'E')) {
            ++p_;
            if (!atEnd() && (*p_ == '+' || *p_ == '-'))
                ++p_;
            if (!digits())
                return fail("chiffre attendu dans l'exposant d'un nombre");
        }
        return true;
    }

    // One UTF-8 sequence of two to four bytes, as RFC 3629 allows it: no overlong form,
    // no surrogate, nothing above U+10FFFF.
    bool utf8Sequence() {
        const auto byte = [this](qsizetype i) {
            return p_ + i < end_ ? static_cast<unsigned char>(p_[i]) : 0u;
        };
        const unsigned lead = byte(0);
        const auto continuation = [&byte](qsizetype i) { return (byte(i) & 0xC0) == 0x80; };
        qsizetype length = 0;
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            const unsigned second = byte(1);
            if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F))
                return fail("UTF-8 invalide");
            length = 3;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            const unsigned second = byte(1);
            if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
                return fail("UTF-8 invalide");
            length = 4;
        } else {
            return fail("UTF-8 invalide");
        }
        for (qsizetype i = 1; i < length; ++i) {
            if (!continuation(i))
                return fail("UTF-8 invalide");
        }
        p_ += length;
        return true;
    }

    bool hex4() {
        if (end_ - p_ < 4)
            return false;
        for (int i = 0; i < 4; ++i) {
            if (text::hexDigitValue(static_cast<unsigned char>(p_[i])) < 0)
                return false;
        }
        p_ += 4;
        return true;
    }

    bool string() {
        ++p_; // opening quote
        for (;;) {
            // Plain ASCII runs are the common case.
            while (p_ < end_ && *p_ != '"' && *p_ != '\\' &&
                   static_cast<unsigned char>(*p_) >= 0x20 &&
                   static_cast<unsigned char>(*p_) < 0x80)
                ++p_;
            if (atEnd())
                return fail("texte non termine");
            const auto c = static_cast<unsigned char>(*p_);
            if (c == '"') {
                ++p_;
                return true;
            }
            if (c < 0x20)
                return fail("caractere de controle non echappe dans un texte");
            if (c >= 0x80) {
                if (!utf8Sequence())
                    return false;
                continue;
            }
            // Backslash.
            if (end_ - p_ < 2)
                return fail("texte non termine");
            const char code = p_[1];
            p_ += 2;
            if (code == 'u') {
                if (!hex4())
                    return fail("sequence d'echappement illegale");
            } else if (std::strchr("\"\\/bfnrt", code) == nullptr || code == '\0') {
                p_ -= 2;
                return fail("sequence d'echappement illegale");
            }
        }
    }

    bool object(int depth) {
        if (depth > kMaxDepth)
            return fail("imbrication trop profonde");
        ++p_;
        skipSpace();
        if (!atEnd() && *p_ == '}') {
            ++p_;
            return true;
        }
        for (;;) {
            if (atEnd())
                return fail("objet non termine");
            if (*p_ != '"')
                return fail("nom de cle attendu");
            if (!string())
                return false;
            skipSpace();
            if (atEnd() || *p_ != ':')
                return fail("deux-points manquant apres une cle");
            ++p_;
            skipSpace();
            if (!value(depth))
                return false;
            skipSpace();
            if (atEnd())
                return fail("objet non termine");
            if (*p_ == '}') {
                ++p_;
                return true;
            }
            if (*p_ != ',')
                return fail("virgule manquante entre deux membres");
            ++p_;
            skipSpace();
        }
    }

    bool array(int depth) {
        if (depth > kMaxDepth)
            return fail("imbrication trop profonde");
        ++p_;
        skipSpace();
        if (!atEnd() && *p_ == ']') {
            ++p_;
            return true;
        }
        for (;;) {
            if (!value(depth))
                return false;
            skipSpace();
            if (atEnd())
                return fail("tableau non termine");
            if (*p_ == ']') {
                ++p_;
                return true;
            }
            if (*p_ != ',')
                return fail("virgule manquante entre deux valeurs");
            ++p_;
            skipSpace();
        }
    }

    const char *begin_;
    const char *p_;
    const char *end_;
    const char *reason_ = "";
};

} // namespace

bool checkJsonSyntax(QByteArrayView bytes, QString *error) {
    SyntaxChecker checker(bytes);
    if (checker.document())
        return true;
    *error = checker.error();
    return false;
}

} // namespace velino
