#pragma once

#include <QString>
#include <QStringView>
#include <QTextBlock>

class QTextDocument;

namespace velino {

// What a reader sees of a text document: its characters without the placeholders Qt keeps in
// the text (U+FFFC for images and other objects, U+FDD0/U+FDD1 at frame edges), and without
// the empty blocks that tables and hidden content leave before the first and after the last
// visible character.

// The characters of `text` a reader sees, placeholders removed.
QString visibleCharacters(QStringView text);

// The blocks from the first to the last holding a visible (non-blank) character; both invalid
// when there is none.
struct VisibleBlocks {
    QTextBlock first;
    QTextBlock last;
};
VisibleBlocks visibleBlocks(const QTextDocument &document);

// Those blocks' visible characters, one line per block, line and paragraph separators as
// line feeds and no-break spaces as spaces, like QTextDocument::toPlainText().
QString visiblePlainText(const QTextDocument &document);

} // namespace velino
