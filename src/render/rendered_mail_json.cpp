#include "rendered_mail_json.h"

#include "suggested_file_name.h"

#include <QJsonArray>

namespace velino {

QJsonObject renderedMailJson(const MailTemplateContext &context) {
    QJsonArray checklist;
    for (const ChecklistItem &item : context.checklist())
        checklist.append(
            QJsonObject{{QStringLiteral("ok"), item.ok}, {QStringLiteral("text"), item.text}});
    const QString html = context.htmlDocument();
    return QJsonObject{
        {QStringLiteral("html"), html},
        // The size Gmail judges by: it clips a message above 102 x 1024 bytes of HTML.
        {QStringLiteral("htmlBytes"), static_cast<qint64>(html.toUtf8().size())},
        {QStringLiteral("text"), context.plainText()},
        {QStringLiteral("subject"), context.subject},
        {QStringLiteral("checklist"), checklist},
        {QStringLiteral("formatStatus"), context.formatStatus()},
        {QStringLiteral("detailsCount"), static_cast<qint64>(context.detailsCount())},
        {QStringLiteral("fileName"), suggestedFileName(context.subject)},
    };
}

} // namespace velino
