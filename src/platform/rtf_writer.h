#pragma once

#include <QByteArray>

class QTextDocument;

namespace velino {

// The document as RTF 1 (7-bit ASCII bytes), readable by word processors and mail composers:
// a font table (first usable family of each run), a colour table (text colours; index 0 is
// the automatic colour), one \pard paragraph per text block (table cells included, in
// reading order) with its alignment, and per run \f, \fs (half-points), \b, \i, \ul and \cf.
// Line breaks inside a paragraph are \line, tabs \tab; links become HYPERLINK fields.
// Every non-ASCII UTF-16 unit is written as \uN? with N signed 16-bit, so characters beyond
// the BMP become a surrogate pair; \ { } are escaped. Images are left out: RTF readers get no
// picture data, and the object replacement character has no meaning there. Paragraphs are
// separated by \par with none after the last, so a reader's text has the line structure of
// QTextDocument::toPlainText().
QByteArray toRtf(const QTextDocument &document);

} // namespace velino
