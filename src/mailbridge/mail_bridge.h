#pragma once

#include "mail_app_executor.h"
#include "mail_app_texts.h"
#include "mail_template_context.h"
#include "platform_services.h"
#include "velino_error.h"

#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

namespace velino {

// Hands the finished e-mail to the desktop mail application as a ready HTML draft, and opens
// a plain "mailto:" link when that fails.
class MailBridge {
public:
    // The error messages of codes 1 and 2; those naming the mail application come from
    // the given texts.
    static QString missingRecipientMessage(); // 1
    static QString missingSenderMessage();    // 2

    // The executor is owned; the URL opener must outlive the bridge.
    MailBridge(std::unique_ptr<MailAppExecutor> executor, UrlOpener &urlOpener,
               const MailAppTexts &texts = platformMailAppTexts());

    // Creates a visible draft: subject, trimmed recipient and sender, the HTML document.
    // Checks, in order: recipient (code 1), sender (code 2), mail application (code 3); then
    // launches the application, runs the draft and maps its failure: not handed over
    // (code 4), else the reported number (5 when none) with the reported message, or the
    // automation-permission message when it is missing or blank. Blocks until done.
    std::optional<VelinoError> compose(const MailTemplateContext &context);

    // Opens fallbackMailURL(recipient, subject); false when there is no valid link or the
    // platform refuses to open it.
    bool openFallbackMailURL(const QString &recipient, const QString &subject);

    // "mailto:" + trimmed recipient as it is, then "?subject=" + the percent-encoded trimmed
    // subject when that is not empty. Nothing when Qt's strict parser rejects the link.
    static std::optional<QUrl> fallbackMailURL(const QString &recipient, const QString &subject);

    // Every UTF-8 byte outside the ASCII letters, the digits and !$'()*,-./:;@_~ written as
    // "%" and two upper-case hexadecimal digits.
    static QString percentEncodedSubject(const QString &subject);

private:
    std::unique_ptr<MailAppExecutor> executor_;
    UrlOpener &urlOpener_;
    const MailAppTexts &texts_;
};

} // namespace velino
