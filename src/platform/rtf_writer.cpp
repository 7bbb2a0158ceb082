#include "rtf_writer.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>
#include <cmath>

namespace velino {
namespace {

constexpr char16_t objectReplacement = 0xFFFC;
constexpr char16_t frameStart = 0xFDD0;
constexpr char16_t frameEnd = 0xFDD1;

// Appends text with RTF escapes; non-ASCII code units as \uN? (signed 16-bit N).
void appendText(QByteArray &out, QStringView text) {
    bool afterUnicode = false;
    for (const QChar qc : text) {
        const char16_t c = qc.unicode();
        // Some readers (unrtf among them) skip the whole word that follows \uN instead of the
        // one fallback character; an empty group ends that word before plain text goes on.
        if (afterUnicode && c > 0x20 && c < 0x7F && c != u'\\' && c != u'{' && c != u'}')
            out += "{}";
        afterUnicode = false;
        switch (c) {
        case u'\\':
            out += "\\\\";
            continue;
        case u'{':
            out += "\\{";
            continue;
        case u'}':
            out += "\\}";
            continue;
        case u'\t':
            out += "\\tab ";
            continue;
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
        case u'\n':
        case u'\r':
            out += "\\line ";
            continue;
        case objectReplacement:
        case frameStart:
        case frameEnd:
            continue;
        default:
            break;
        }
        if (c < 0x20 || c == 0x7F)
            continue; // other control characters carry nothing readable
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else {
            out += "\\u";
            out += QByteArray::number(static_cast<int>(static_cast<qint16>(c)));
            out += '?';
            afterUnicode = true;
        }
    }
}

// A family name usable in the font table: vendor keywords such as "-apple-system" are
// skipped, and the characters that end or nest a table entry are dropped.
QString usableFamily(const QFont &font, const QString &fallback) {
    QStringList families = font.families();
    if (families.isEmpty())
        families << font.family();
    for (QString family : std::as_const(families)) {
        family.remove(u';');
        family.remove(u'{');
        family.remove(u'}');
        family = family.trimmed();
        if (!family.isEmpty() && !family.startsWith(u'-'))
            return family;
    }
    return fallback;
}

int halfPoints(const QFont &font, const QFont &documentFont) {
    qreal points = font.pointSizeF();
    if (points <= 0 && font.pixelSize() > 0)
        points = font.pixelSize() * 0.75; // CSS pixels at 96 per inch
    if (points <= 0)
        points = documentFont.pointSizeF();
    if (points <= 0 && documentFont.pixelSize() > 0)
        points = documentFont.pixelSize() * 0.75;
    if (points <= 0)
        points = 12;
    return std::clamp(static_cast<int>(std::lround(points * 2)), 2, 3000);
}

QByteArray alignmentWord(Qt::Alignment alignment) {
    if (alignment & Qt::AlignHCenter)
        return "\\qc";
    if (alignment & Qt::AlignJustify)
        return "\\qj";
    if ((alignment & Qt::AlignRight) ||
        ((alignment & Qt::AlignTrailing) && (alignment & Qt::AlignAbsolute)))
        return "\\qr";
    return "\\ql";
}

class RtfBuilder {
public:
    explicit RtfBuilder(const QTextDocument &document)
        : document_(document), documentFont_(document.defaultFont()),
          defaultFamily_(usableFamily(documentFont_, QStringLiteral("Helvetica"))) {
        fontIndex(defaultFamily_);
    }

    QByteArray build() {
        QByteArray body;
        bool first = true;
        for (QTextBlock block = document_.begin(); block.isValid(); block = block.next()) {
            if (!first)
                body += "\\par\n";
            first = false;
            appendBlock(body, block);
        }

        QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
        for (qsizetype i = 0; i < fonts_.size(); ++i) {
            out += "{\\f" + QByteArray::number(i) + "\\fnil ";
            appendText(out, fonts_[i]);
            out += ";}";
        }
        out += "}\n{\\colortbl;";
        for (const QColor &color : std::as_const(colors_)) {
            out += "\\red" + QByteArray::number(color.red()) + "\\green" +
                   QByteArray::number(color.green()) + "\\blue" + QByteArray::number(color.blue()) +
                   ";";
        }
        out += "}\n";
        out += body;
        out += "}\n";
        return out;
    }

private:
    qsizetype fontIndex(const QString &family) {
        qsizetype i = fonts_.indexOf(family);
        if (i < 0) {
            fonts_.append(family);
            i = fonts_.size() - 1;
        }
        return i;
    }

    // Index in the colour table, 0 for the automatic colour.
    qsizetype colorIndex(const QTextCharFormat &format) {
        if (!format.hasProperty(QTextFormat::ForegroundBrush))
            return 0;
        const QBrush brush = format.foreground();
        if (brush.style() == Qt::NoBrush)
            return 0;
        const QColor color = brush.color().toRgb();
        qsizetype i = colors_.indexOf(color);
        if (i < 0) {
            colors_.append(color);
            i = colors_.size() - 1;
        }
        return i + 1;
    }

    void appendRun(QByteArray &out, const QTextCharFormat &format, QStringView text) {
        const QFont font = format.font();
        out += "{\\f" + QByteArray::number(fontIndex(usableFamily(font, defaultFamily_)));
        out += "\\fs" + QByteArray::number(halfPoints(font, documentFont_));
        if (format.fontWeight() >= QFont::DemiBold)
            out += "\\b";
        if (format.fontItalic())
            out += "\\i";
        if (format.fontUnderline())
            out += "\\ul";
        if (const qsizetype color = colorIndex(format); color > 0)
            out += "\\cf" + QByteArray::number(color);
        out += ' ';
        appendText(out, text);
        out += '}';
    }

    void appendBlock(QByteArray &out, const QTextBlock &block) {
        out += "\\pard\\plain" + alignmentWord(block.blockFormat().alignment()) + ' ';
        QString openLink;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.isValid())
                continue;
            const QTextCharFormat format = fragment.charFormat();
            const QString href = format.isAnchor() ? format.anchorHref() : QString();
            if (href != openLink) {
                if (!openLink.isEmpty())
                    out += "}}";
                if (!href.isEmpty()) {
                    out += "{\\field{\\*\\fldinst HYPERLINK \"";
                    QString target = href;
                    target.replace(u'"', QStringLiteral("%22"));
                    appendText(out, target);
                    out += "\"}{\\fldrslt ";
                }
                openLink = href;
            }
            appendRun(out, format, fragment.text());
        }
        if (!openLink.isEmpty())
            out += "}}";
    }

    const QTextDocument &document_;
    const QFont documentFont_;
    const QString defaultFamily_;
    QStringList fonts_;
    QList<QColor> colors_;
};

} // namespace

QByteArray toRtf(const QTextDocument &document) {
    return RtfBuilder(document).build();
}

} // namespace velino
