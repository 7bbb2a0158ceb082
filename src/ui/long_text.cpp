#include "long_text.h"

#include <QLocale>

namespace velino::ui {

namespace {

constexpr qsizetype kSummaryCharacters = 160;

} // namespace

qsizetype utf8Size(QStringView text) {
    qsizetype bytes = 0;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        // A surrogate pair (four bytes in UTF-8) counts two halves of two bytes each.
        bytes += u < 0x80 ? 1 : (u < 0x800 || QChar::isSurrogate(u)) ? 2 : 3;
    }
    return bytes;
}

bool isLongText(QStringView text) {
    return text.size() > kLongTextCharacters;
}

QString longTextSize(QStringView text) {
    const QLocale french(QLocale::French, QLocale::France);
    const double bytes = double(utf8Size(text));
    if (bytes >= 1000.0 * 1000.0)
        return french.toString(bytes / (1000.0 * 1000.0), 'f', 1) + QStringLiteral(" Mo");
    return french.toString(qRound(bytes / 1000.0)) + QStringLiteral(" Ko");
}

QString longTextSummary(QStringView text) {
    QString start = text.left(kSummaryCharacters).toString();
    for (QChar &c : start) {
        if (c == u'\n' || c == u'\r' || c == u'\t' || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    }
    return QStringLiteral("Texte tres long (") + longTextSize(text) + QStringLiteral(") : ") +
           start.trimmed() + QStringLiteral("...");
}

} // namespace velino::ui
