#include "visible_text.h"

#include <QTextDocument>

namespace velino {
namespace {

constexpr char16_t frameStart = 0xFDD0;
constexpr char16_t frameEnd = 0xFDD1;

bool isBlank(QStringView text) {
    for (const QChar c : text) {
        if (!c.isSpace() && c != QChar::ObjectReplacementCharacter && c != frameStart &&
            c != frameEnd)
            return false;
    }
    return true;
}

} // namespace

QString visibleCharacters(QStringView text) {
    QString visible = text.toString();
    visible.removeIf([](QChar c) {
        return c == QChar::ObjectReplacementCharacter || c == frameStart || c == frameEnd;
    });
    return visible;
}

VisibleBlocks visibleBlocks(const QTextDocument &document) {
    VisibleBlocks blocks;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (isBlank(block.text()))
            continue;
        if (!blocks.first.isValid())
            blocks.first = block;
        blocks.last = block;
    }
    return blocks;
}

QString visiblePlainText(const QTextDocument &document) {
    const VisibleBlocks blocks = visibleBlocks(document);
    QString text;
    if (!blocks.first.isValid())
        return text;
    for (QTextBlock block = blocks.first;; block = block.next()) {
        QString line = visibleCharacters(block.text());
        for (QChar &c : line) {
            if (c == QChar::Nbsp)
                c = u' ';
            else if (c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
                c = u'\n';
        }
        text += line;
        if (block == blocks.last)
            break;
        text += u'\n';
    }
    return text;
}

} // namespace velino
