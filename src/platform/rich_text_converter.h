#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace velino {

// An HTML document imported as styled text.
struct RichTextConversion {
    std::optional<QByteArray> rtf; // the styled text as RTF, when it could be written
    QString plainText;             // the characters of the styled text
};

// HTML bytes (UTF-8) in, RTF and the rendered plain characters out. The store puts the HTML on
// the clipboard in any case; on nothing it adds its own text version, otherwise the RTF (when
// present) and these plain characters.
class RichTextConverter {
public:
    virtual ~RichTextConverter() = default;
    // Nothing when the HTML cannot be imported.
    virtual std::optional<RichTextConversion> convert(const QByteArray &htmlUtf8) = 0;
};

// QTextDocument::setHtml of the HTML without its hidden elements and with solid colours for its
// gradients (html_import_filter.h), then toRtf (rtf_writer.h) and visiblePlainText
// (visible_text.h): no hidden preheader, no object placeholders. The
// import counts as failed for input that is empty or blank (nothing to style), for bytes that
// are not valid UTF-8, and when no QGuiApplication exists (text documents need its fonts).
// Resources named by the HTML (images, style sheets) are never loaded, so a document cannot
// make the converter read local files.
class QtRichTextConverter final : public RichTextConverter {
public:
    std::optional<RichTextConversion> convert(const QByteArray &htmlUtf8) override;
};

} // namespace velino
