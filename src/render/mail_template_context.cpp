#include "mail_template_context.h"

#include "default_texts.h"
#include "sanitizers.h"
#include "text.h"

namespace velino {
namespace {

QString trimmedOr(const QString &value, QString (*fallback)()) {
    QString t = text::trimmed(value);
    return t.isEmpty() ? fallback() : t;
}

QString unlessBlank(const QString &value, QString (*fallback)()) {
    return text::isBlank(value) ? fallback() : value;
}

} // namespace

MailTemplateContext::MailTemplateContext(MailComposerData record)
    : data(std::move(record)), details(render::buildDetails(data)),
      subject(trimmedOr(data.subject, texts::defaultSubject)),
      preheader(trimmedOr(data.preheader, texts::defaultPreheader)),
      mailTitle(trimmedOr(data.mailTitle, texts::defaultMailTitle)),
      mailIntro(unlessBlank(data.mailIntro, texts::defaultMailIntro)),
      mailBody(unlessBlank(data.mailBody, texts::defaultMailBody)),
      closingNote(text::trimmed(data.closingNote)),
      ctaHref(render::sanitizeURL(data.ctaURL, data.senderEmail)),
      logoURL(render::resolveLogoSource(data.logoURL)),
      accentPrimary(render::normalizeHex(data.accentPrimary, MailComposerData::fallbackPrimary())),
      accentSecondary(
          render::normalizeHex(data.accentSecondary, MailComposerData::fallbackSecondary())),
      titleFont(render::sanitizeFontStack(data.titleFont, MailComposerData::fallbackTitleFont())),
      bodyFont(render::sanitizeFontStack(data.bodyFont, MailComposerData::fallbackBodyFont())),
      senderPhoneHref(render::telephoneHref(data.senderPhone)),
      primarySoft(render::rgba(accentPrimary, 0.10)),
      primaryBorder(render::rgba(accentPrimary, 0.18)),
      primaryGlow(render::rgba(accentPrimary, 0.24)),
      secondarySoft(render::rgba(accentSecondary, 0.16)),
      secondaryGlow(render::rgba(accentSecondary, 0.24)),
      introParagraphs_(render::textParagraphs(mailIntro)),
      bodyParagraphs_(render::textParagraphs(mailBody)),
      closingParagraphs_(render::textParagraphs(closingNote)) {}

QString MailTemplateContext::recipientLabel() const {
    QString name = text::trimmed(data.recipientName);
    if (!name.isEmpty())
        return name;
    QString email = text::trimmed(data.recipientEmail);
    if (!email.isEmpty())
        return email;
    return QStringLiteral("Client");
}

} // namespace velino
