#include "mail_bridge.h"

#include "mail_draft_script.h"
#include "text.h"

#include <QByteArray>

namespace velino {

QString MailBridge::missingRecipientMessage() {
    return QStringLiteral("Renseigne l'email du client avant l'envoi.");
}

QString MailBridge::missingSenderMessage() {
    return QStringLiteral("Renseigne l'email expediteur avant l'envoi.");
}

MailBridge::MailBridge(std::unique_ptr<MailAppExecutor> executor, UrlOpener &urlOpener,
                       const MailAppTexts &texts)
    : executor_(std::move(executor)), urlOpener_(urlOpener), texts_(texts) {}

std::optional<VelinoError> MailBridge::compose(const MailTemplateContext &context) {
    const QString recipient = text::trimmed(context.data.recipientEmail);
    const QString sender = text::trimmed(context.data.senderEmail);
    // The sender is required although the draft would accept none: the workshop's address
    // must be the one the client sees.
    if (recipient.isEmpty())
        return VelinoError{1, missingRecipientMessage()};
    if (sender.isEmpty())
        return VelinoError{2, missingSenderMessage()};
    if (!executor_ || !executor_->findApplication())
        return VelinoError{3, texts_.applicationMissing};

    executor_->launchApplication();

    MailDraft draft;
    draft.subject = context.subject;
    draft.recipient = recipient;
    draft.sender = sender;
    draft.html = context.htmlDocument();
    draft.script = mailDraftScript(draft.subject, draft.recipient, draft.sender, draft.html);

    const std::optional<DraftFailure> failure = executor_->runDraft(draft);
    if (!failure)
        return std::nullopt;
    if (failure->notPrepared)
        return VelinoError{4, texts_.bridgeUnavailable};
    const QString message = failure->message ? text::trimmed(*failure->message) : QString();
    return VelinoError{failure->number.value_or(5),
                       message.isEmpty() ? texts_.automationRefused : message};
}

QString MailBridge::percentEncodedSubject(const QString &subject) {
    // Letters, digits and "-._~" are kept by default; the rest of the allowed set is added.
    return QString::fromLatin1(subject.toUtf8().toPercentEncoding("!$'()*,/:;@"));
}

std::optional<QUrl> MailBridge::fallbackMailURL(const QString &recipient, const QString &subject) {
    QString link = QStringLiteral("mailto:") + text::trimmed(recipient);
    const QString trimmedSubject = text::trimmed(subject);
    if (!trimmedSubject.isEmpty())
        link += QStringLiteral("?subject=") + percentEncodedSubject(trimmedSubject);
    // Tolerant parsing: the parser escapes what a URL cannot hold as it is (a blank, angle
    // brackets), as the address is handed over unencoded.
    QUrl url(link, QUrl::TolerantMode);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

bool MailBridge::openFallbackMailURL(const QString &recipient, const QString &subject) {
    const std::optional<QUrl> url = fallbackMailURL(recipient, subject);
    return url && urlOpener_.openUrl(*url);
}

} // namespace velino
