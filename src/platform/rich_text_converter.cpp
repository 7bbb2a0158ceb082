#include "rich_text_converter.h"

#include "html_import_filter.h"
#include "rtf_writer.h"
#include "visible_text.h"

#include <QGuiApplication>
#include <QStringDecoder>
#include <QTextDocument>

namespace velino {
namespace {

// A document that resolves no external resource.
class IsolatedTextDocument final : public QTextDocument {
protected:
    QVariant loadResource(int, const QUrl &) override { return {}; }
};

} // namespace

std::optional<RichTextConversion> QtRichTextConverter::convert(const QByteArray &htmlUtf8) {
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return std::nullopt;
    if (htmlUtf8.trimmed().isEmpty())
        return std::nullopt;

    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString html = decoder.decode(htmlUtf8);
    if (decoder.hasError())
        return std::nullopt;

    IsolatedTextDocument document;
    document.setHtml(prepareHtmlForImport(html));
    RichTextConversion conversion;
    conversion.rtf = toRtf(document);
    conversion.plainText = visiblePlainText(document);
    return conversion;
}

} // namespace velino
