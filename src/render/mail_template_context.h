#pragma once

#include "detail_item.h"
#include "mail_composer_data.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace velino {

// Everything the renderers need, derived once from one content record. Building it never
// fails: blank or unusable values are replaced by fixed fallbacks.
class MailTemplateContext {
public:
    explicit MailTemplateContext(MailComposerData data);

    MailComposerData data;
    QList<DetailItem> details;
    QString subject;
    QString preheader;
    QString mailTitle;
    QString mailIntro;
    QString mailBody;
    QString closingNote;
    QString ctaHref;
    QString logoURL;
    QString accentPrimary;
    QString accentSecondary;
    QString titleFont;
    QString bodyFont;
    QString senderPhoneHref;
    QString primarySoft;
    QString primaryBorder;
    QString primaryGlow;
    QString secondarySoft;
    QString secondaryGlow;

    // Trimmed recipient name, else trimmed recipient e-mail, else "Client".
    QString recipientLabel() const;

    QString htmlDocument() const;
    QString plainText() const;
    QList<ChecklistItem> checklist() const;
    QString formatStatus() const;
    qsizetype detailsCount() const { return details.size(); }

    // Paragraphs of the introduction, the body and the closing note, shared by both
    // renderings so that each text is split once.
    const QStringList &introParagraphs() const { return introParagraphs_; }
    const QStringList &bodyParagraphs() const { return bodyParagraphs_; }
    const QStringList &closingParagraphs() const { return closingParagraphs_; }

private:
    QStringList introParagraphs_;
    QStringList bodyParagraphs_;
    QStringList closingParagraphs_;
};

} // namespace velino
