#pragma once

#include "mail_template_context.h"

#include <QJsonObject>

namespace velino {

// What a rendering gives, as one JSON object: html, htmlBytes (its UTF-8 size), text,
// subject, checklist ({ok, text} items), formatStatus, detailsCount and the suggested
// export fileName. velino-render's JSON output and the phone page's render answer are
// this object.
QJsonObject renderedMailJson(const MailTemplateContext &context);

} // namespace velino
