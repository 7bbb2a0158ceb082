#include "composer_store.h"

#include "identifiers.h"
#include "mail_app_texts.h"
#include "mail_bridge.h"
#include "mail_template_context.h"
#include "suggested_file_name.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QUrl>

// Output actions: copy, export, standalone preview and the mail-application draft.
namespace velino {
namespace {

// The file name shown after an export: the last component of the chosen location.
QString lastPathComponent(const QString &path) {
    QString cleaned = path;
    while (cleaned.size() > 1 && cleaned.endsWith(QLatin1Char('/')))
        cleaned.chop(1);
    return QFileInfo(cleaned).fileName();
}

} // namespace

void ComposerStore::copySubject() {
    regenerate();
    persist();
    ClipboardItem item;
    item.plainText = generatedSubject_;
    services_.clipboard->setItem(item);
    setLastAction(QStringLiteral("Objet copie."));
}

void ComposerStore::copyPlainText() {
    regenerate();
    persist();
    ClipboardItem item;
    item.plainText = generatedText_;
    services_.clipboard->setItem(item);
    setLastAction(QStringLiteral("Version texte copiee."));
}

void ComposerStore::copyHTML() {
    regenerate();
    persist();
    copyRichHTMLToPasteboard();
    setLastAction(platformMailAppTexts().mailCopied);
}

void ComposerStore::exportHTML() {
    regenerate();
    persist();
    // The dialog is modal: what is written is what was shown and saved when it opened.
    const QPointer<ComposerStore> self(this);
    services_.saveDialog->askSaveLocation(
        QStringLiteral("Exporter le mail HTML"), suggestedFileName(generatedSubject_),
        [self, html = generatedHTML_](const std::optional<QString> &location) {
            if (self)
                self->writeExport(location, html);
        });
}

void ComposerStore::writeExport(const std::optional<QString> &location, const QString &html) {
    if (!location || location->isEmpty())
        return; // cancelled: nothing to report
    if (!services_.files->writeUtf8Atomically(*location, html)) {
        services_.alerts->showWarning(QStringLiteral("Impossible d'exporter le mail HTML."));
        return;
    }
    setLastAction(QStringLiteral("HTML exporte vers ") + lastPathComponent(*location) +
                  QStringLiteral("."));
}

void ComposerStore::openStandalonePreview() {
    regenerate();
    persist();
    const QString folder = services_.files->privateFolder();
    const QString path =
        QDir(folder).filePath(uuidText(services_.ids->newId()) + QStringLiteral(".html"));
    // Without the folder the name alone would land in the working directory.
    if (folder.isEmpty() || !services_.files->writePrivateUtf8(path, generatedHTML_)) {
        services_.alerts->showWarning(QStringLiteral("Impossible d'ouvrir l'apercu."));
        return;
    }
    // Whether a browser actually showed the page is not known here and not reported.
    services_.urls->openUrl(QUrl::fromLocalFile(path));
    setLastAction(QStringLiteral("Apercu autonome ouvert."));
}

void ComposerStore::openAppleMailDraft() {
    regenerate();
    persist();
    const MailTemplateContext context(data_);
    const std::optional<VelinoError> error = mailBridge_->compose(context);
    if (!error) {
        setLastAction(platformMailAppTexts().draftOpened);
        return;
    }
    // The full content goes to the clipboard before the plain link is tried, so that it can
    // be pasted by hand into whatever opens.
    copyRichHTMLToPasteboard();
    if (mailBridge_->openFallbackMailURL(data_.recipientEmail, generatedSubject_)) {
        setLastAction(QStringLiteral("Mail ouvert en mode secours."));
        services_.alerts->showWarning(platformMailAppTexts().fallbackOpened);
        return;
    }
    services_.alerts->showWarning(error->description);
}

void ComposerStore::copyRichHTMLToPasteboard() {
    const QByteArray html = generatedHTML_.toUtf8();
    ClipboardItem item;
    item.html = generatedHTML_; // offered in every case
    const std::optional<RichTextConversion> conversion = services_.richText->convert(html);
    if (!conversion) {
        item.plainText = generatedText_;
    } else {
        item.rtf = conversion->rtf; // left out when the RTF could not be written
        item.plainText = conversion->plainText;
    }
    services_.clipboard->setItem(item);
}

} // namespace velino
