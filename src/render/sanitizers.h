#pragma once

#include "detail_item.h"
#include "mail_composer_data.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

// Value clean-up shared by the renderers. Every function is pure and total.
namespace velino::render {

// https:, http: or data: addresses are kept; anything else gives the workshop's logo.
QString resolveLogoSource(const QString &value);

// The one reader of colour texts, e-mail and window alike: "#rrggbb" or "#rgb" (each digit
// doubled), hexadecimal digits of either case, after trimming; the red, green and blue
// bytes, or nothing for any other text.
std::optional<std::array<int, 3>> hexColorChannels(QStringView text);

// "#rrggbb" or "#rgb" (any case, trimmed) in lower-case six-digit form; else the fallback.
QString normalizeHex(const QString &value, const QString &fallback);

// "rgba(r, g, b, a)" of a colour, the alpha with two decimals (alpha from 0 to 1); an
// unreadable colour counts as the default primary.
QString rgba(const QString &hex, double alpha);

// The same text, held on the stack for writing straight into a document.
struct RgbaText {
    char16_t chars[32];
    qsizetype size = 0;
    QStringView view() const { return QStringView(chars, size); }
};
RgbaText rgbaText(QStringView hex, double alpha);

// Keeps letters, numbers and  ,"'-().  so the stack can sit inside a CSS declaration.
QString sanitizeFontStack(const QString &value, const QString &fallback);

// Turns a button target into a usable link: mailto:, http(s): or tel: as written,
// bare addresses and host names completed, empty gives a mailto: of the sender or "#".
QString sanitizeURL(const QString &value, const QString &fallbackEmail);

// "tel:" followed by the digits and pluses of the phone, or "" when none.
QString telephoneHref(const QString &phone);

// The filled label/value pairs, in order, with "Detail" and "-" for a missing half.
QList<DetailItem> buildDetails(const MailComposerData &data);

// The non-blank lines of a text, each trimmed, as at most one paragraph.
QStringList textParagraphs(const QString &text);

// Five-entity HTML escaping, ampersand first.
QString escapeHTML(const QString &text);

} // namespace velino::render
