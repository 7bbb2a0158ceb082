#include "output_fixture.h"

using namespace velino;
using velino::test::OutputTest;

static const QString kRtfType = QStringLiteral("text/rtf");

TEST_F(OutputTest, EveryActionRegeneratesAndSavesTheEditBeforeActing) {
    using S = ComposerStore;
    const std::pair<const char *, void (S::*)()> actions[] = {
        {"copySubject", &S::copySubject},
        {"copyPlainText", &S::copyPlainText},
        {"copyHTML", &S::copyHTML},
        {"exportHTML", &S::exportHTML},
        {"preview", &S::openStandalonePreview},
        {"mailDraft", &S::openAppleMailDraft}};
    for (const auto &[name, action] : actions) {
        SCOPED_TRACE(name);
        const auto store = makeOutputStore();
        const QString subject = QStringLiteral("Objet avant %1").arg(QLatin1String(name));
        store->setDataField("subject", subject);
        (store.get()->*action)();
        EXPECT_EQ(store->generatedSubject() + " | " + savedSubject(), subject + " | " + subject);
        EXPECT_TRUE(store->generatedHTML().contains(subject));
    }
}

// The subject and the text version go as one plain string; the mail as HTML, RTF for rich
// applications and its visible text, without any markup, for plain ones.
TEST_F(OutputTest, EachCopyPutsItsOwnFormsOnTheClipboard) {
    const QString subject = QString::fromUtf16(u"R\u00E9paration \u00E9cran \U0001F4F1");
    const auto store = makeOutputStore();
    store->setDataField("subject", subject);
    for (const auto &[copy, copied] : {std::pair(&ComposerStore::copySubject, subject),
                                       std::pair(&ComposerStore::copyPlainText, QString())}) {
        QGuiApplication::clipboard()->setText("autre"); // replaced or not
        (store.get()->*copy)();
        EXPECT_EQ(clipboardContent().text(), copied.isEmpty() ? store->generatedText() : copied);
        EXPECT_FALSE(clipboardContent().hasHtml() || clipboardContent().hasFormat(kRtfType));
    }
    store->copyHTML();
    EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
    EXPECT_TRUE(clipboardContent().data(kRtfType).startsWith("{\\rtf1"));
    EXPECT_TRUE(clipboardContent().text().contains("Votre devis est pret"));
    EXPECT_FALSE(clipboardContent().text().contains(u'<'));
    EXPECT_EQ(desktop->log, QStringList({"clipboard", "lastAction: Objet copie.", "clipboard",
                                         "lastAction: Version texte copiee.", "clipboard",
                                         "lastAction: " + platformMailAppTexts().mailCopied}));
}
