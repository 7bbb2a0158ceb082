#include "preview_document.h"

#include "long_text.h"
#include "mail_template_context.h"

namespace velino::ui {

namespace {

// What is kept of a long text: enough to judge the layout around it.
constexpr qsizetype kShownCharacters = 2000;

} // namespace

std::optional<MailComposerData> PreviewDocument::shortenedForPreview(const MailComposerData &data) {
    std::optional<MailComposerData> shortened;
    for (const MailComposerData::Field &field : MailComposerData::fields()) {
        const QString &text = data.*field.member;
        if (!isLongText(text))
            continue;
        if (!shortened)
            shortened = data;
        (*shortened).*field.member = text.left(kShownCharacters) + QStringLiteral(" [...]");
    }
    return shortened;
}

void PreviewDocument::setStore(ComposerStore *store) {
    if (m_store == store)
        return;
    disconnect(m_connection);
    m_store = store;
    if (m_store)
        m_connection =
            connect(m_store, &ComposerStore::generatedHTMLChanged, this, &PreviewDocument::update);
    Q_EMIT storeChanged();
    update();
}

void PreviewDocument::update() {
    QString html;
    bool shortened = false;
    if (m_store) {
        if (const std::optional<MailComposerData> cut = shortenedForPreview(m_store->data())) {
            html = MailTemplateContext(*cut).htmlDocument();
            shortened = true;
        } else {
            html = m_store->generatedHTML();
        }
    }
    // Assigned even when equal: the preview reloads on every publication of the store.
    m_html = html;
    m_shortened = shortened;
    Q_EMIT htmlChanged();
}

} // namespace velino::ui
