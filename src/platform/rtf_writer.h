#pragma once

#include <QByteArray>

class QTextDocument;

namespace velino {

// The document as RTF 1 (7-bit ASCII bytes), readable by word processors and mail composers:
// a font table (per run the first family of its stack installed here, rtf_font_choice.h), a
// colour table (index 0 is the automatic colour), one \pard paragraph per text block (table
// cells included, in reading order) with its alignment, and per run \f, \fs (half-points), \b,
// \i, \ul and \cf. Line breaks inside a paragraph are \line, tabs \tab; links become HYPERLINK
// fields.
//
// Backgrounds: a paragraph painted on anything but white (its cell, table or frame, composited
// over a white page) gets that colour as \cbpat, and its runs get their own background (over
// the paragraph's) as \chcbpat and \cb. Translucent text is composited over it. A run whose
// text would be unreadable there (contrast below 3:1) is written in the document's text
// colour, black, and on the white page when even black is unreadable.
//
// Only the blocks from the first to the last visible character are written (visible_text.h);
// images and other object placeholders are left out. Every non-ASCII UTF-16 unit is written
// as \uN? with N signed 16-bit, so characters beyond the BMP become a surrogate pair;
// \ { } are escaped. Paragraphs are separated by \par with none after the last, so a
// reader's text is visiblePlainText() of the document.
QByteArray toRtf(const QTextDocument &document);

} // namespace velino
