#include "rtf_writer.h"

#include "color_contrast.h"
#include "rtf_font_choice.h"
#include "visible_text.h"

#include <QColor>
#include <QFont>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextFrame>
#include <QTextTable>

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

// Below this contrast ratio (WCAG "large text" level) a run counts as unreadable.
constexpr double kMinimumContrast = 3.0;
// The page of a word processor and the colour of text with no colour of its own.
const QColor kPage(255, 255, 255);
const QColor kDocumentText(0, 0, 0);

// The colour of a solid brush; other brushes (none, gradients, textures) paint nothing here.
QColor solidColor(const QBrush &brush) {
    return brush.style() == Qt::SolidPattern ? brush.color().toRgb() : QColor(0, 0, 0, 0);
}

bool sameColor(const QColor &a, const QColor &b) {
    return a.rgb() == b.rgb();
}

bool isBlank(QStringView text) {
    return visibleCharacters(text).trimmed().isEmpty();
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
        : document_(document), documentFont_(document.defaultFont()) {
        QStringList stack = documentFont_.families();
        if (stack.isEmpty())
            stack << documentFont_.family();
        defaultFont_ = fontChooser_.choose(stack);
        fontIndex(defaultFont_);
    }

    QByteArray build() {
        QByteArray body;
        const VisibleBlocks visible = visibleBlocks(document_);
        for (QTextBlock block = visible.first; block.isValid(); block = block.next()) {
            if (block != visible.first)
                body += "\\par\n";
            appendBlock(body, block);
            if (block == visible.last)
                break;
        }

        QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n{\\fonttbl";
        for (qsizetype i = 0; i < fonts_.size(); ++i) {
            out += "{\\f" + QByteArray::number(i) + fonts_[i].familyClass + ' ';
            appendText(out, fonts_[i].family);
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
    // What a block or run is painted on, over the page. Qt's HTML import copies a cell's
    // background into the formats of the blocks and characters inside it, so a layer equal to
    // the one below it is the same paint, counted once.
    struct Backdrop {
        QColor color = kPage;
        QColor innermostLayer = QColor(0, 0, 0, 0);

        void paint(const QColor &layer) {
            if (layer.alpha() == 0 || layer == innermostLayer)
                return;
            color = composite(layer, color);
            innermostLayer = layer;
        }
    };

    qsizetype fontIndex(const RtfFont &font) {
        qsizetype i = fonts_.indexOf(font);
        if (i < 0) {
            fonts_.append(font);
            i = fonts_.size() - 1;
        }
        return i;
    }

    qsizetype fontIndex(const QFont &font) {
        QStringList stack = font.families();
        if (stack.isEmpty() && !font.family().isEmpty())
            stack << font.family();
        return fontIndex(stack.isEmpty() ? defaultFont_ : fontChooser_.choose(stack));
    }

    // Index of an opaque colour in the colour table (1 and up; 0 is the automatic colour).
    qsizetype colorIndex(QColor color) {
        color = color.toRgb();
        color.setAlpha(255);
        qsizetype i = colors_.indexOf(color);
        if (i < 0) {
            colors_.append(color);
            i = colors_.size() - 1;
        }
        return i + 1;
    }

    // The block's own background over those of the table cells, tables and frames around it.
    Backdrop blockBackdrop(const QTextBlock &block) const {
        QList<QColor> layers; // innermost first
        layers << solidColor(block.blockFormat().background());
        const int position = block.position();
        for (QTextFrame *frame = document_.frameAt(position); frame; frame = frame->parentFrame()) {
            if (const auto *table = qobject_cast<const QTextTable *>(frame)) {
                if (const QTextTableCell cell = table->cellAt(position); cell.isValid())
                    layers << solidColor(cell.format().background());
            }
            layers << solidColor(frame->frameFormat().background());
        }
        Backdrop backdrop;
        for (auto layer = layers.crbegin(); layer != layers.crend(); ++layer)
            backdrop.paint(*layer);
        return backdrop;
    }

    void appendRun(QByteArray &out, const QTextCharFormat &format, QStringView text,
                   const Backdrop &paragraph) {
        Backdrop run = paragraph;
        run.paint(solidColor(format.background()));
        QColor background = run.color;
        const bool coloured = format.hasProperty(QTextFormat::ForegroundBrush) &&
                              format.foreground().style() != Qt::NoBrush;
        QColor textColor =
            coloured ? composite(format.foreground().color(), background) : kDocumentText;
        bool explicitColor = coloured;
        if (!isBlank(text) && contrastRatio(textColor, background) < kMinimumContrast) {
            textColor = kDocumentText;
            explicitColor = true;
            if (contrastRatio(textColor, background) < kMinimumContrast)
                background = kPage;
        }

        const QFont font = format.font();
        out += "{\\f" + QByteArray::number(fontIndex(font));
        out += "\\fs" + QByteArray::number(halfPoints(font, documentFont_));
        if (format.fontWeight() >= QFont::DemiBold)
            out += "\\b";
        if (format.fontItalic())
            out += "\\i";
        if (format.fontUnderline())
            out += "\\ul";
        if (explicitColor || !sameColor(background, kPage))
            out += "\\cf" + QByteArray::number(colorIndex(textColor));
        if (!sameColor(background, kPage) || !sameColor(paragraph.color, kPage)) {
            // \chcbpat for Word and LibreOffice, \cb for the Cocoa text system.
            const QByteArray index = QByteArray::number(colorIndex(background));
            out += "\\chcbpat" + index + "\\cb" + index;
        }
        out += ' ';
        appendText(out, text);
        out += '}';
    }

    void appendBlock(QByteArray &out, const QTextBlock &block) {
        out += "\\pard\\plain" + alignmentWord(block.blockFormat().alignment());
        const Backdrop backdrop = blockBackdrop(block);
        if (!sameColor(backdrop.color, kPage))
            out += "\\cbpat" + QByteArray::number(colorIndex(backdrop.color));
        out += ' ';
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
            appendRun(out, format, fragment.text(), backdrop);
        }
        if (!openLink.isEmpty())
            out += "}}";
    }

    const QTextDocument &document_;
    const QFont documentFont_;
    RtfFontChooser fontChooser_;
    RtfFont defaultFont_;
    QList<RtfFont> fonts_;
    QList<QColor> colors_;
};

} // namespace

QByteArray toRtf(const QTextDocument &document) {
    return RtfBuilder(document).build();
}

} // namespace velino
