#pragma once

#include <QString>
#include <QStringView>

namespace velino {

// The generated e-mail prepared for QTextDocument::setHtml, which ignores `display:none` and
// knows no CSS gradients:
// - an element that is hidden (attribute `hidden`, or an inline style with display:none,
//   visibility:hidden, opacity:0, mso-hide:all, or max-height:0 with overflow:hidden) is left
//   out with everything it contains, up to its matching end tag;
// - an inline `background` or `background-image` holding a gradient becomes the
//   `background` of its average colour (css_background.h).
// Everything else is copied unchanged: text, comments, declarations, and the contents of
// <style>, <script>, <title> and <textarea> as they are. The scanner reads tags and quoted
// attribute values only; a '<' that starts no tag stays text, an unclosed hidden element
// hides the rest of the document, as in a browser.
QString prepareHtmlForImport(QStringView html);

} // namespace velino
