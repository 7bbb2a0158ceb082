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

TEST_F(OutputTest, CopySubjectAndTextVersionPutOnePlainStringOnTheClipboard) {
    const QString subject = QString::fromUtf16(u"R\u00E9paration \u00E9cran \U0001F4F1");
    const auto store = makeOutputStore();
    store->setDataField("subject", subject);
    for (const auto &[copy, copied] : {std::pair(&ComposerStore::copySubject, subject),
                                       std::pair(&ComposerStore::copyPlainText, QString())}) {
        putOtherTextOnClipboard();
        (store.get()->*copy)();
        EXPECT_EQ(clipboardContent().text(), copied.isEmpty() ? store->generatedText() : copied);
        EXPECT_FALSE(clipboardContent().hasHtml() || clipboardContent().hasFormat(kRtfType));
    }
    EXPECT_EQ(
        desktop->log.join(" | "),
        "clipboard | lastAction: Objet copie. | clipboard | lastAction: Version texte copiee.");
}

TEST_F(OutputTest, CopyHtmlPassesTheConvertersRepresentationsThrough) {
    desktop->scripted = true;
    const auto store = makeOutputStore();
    const std::tuple<std::optional<RichTextConversion>, std::optional<QByteArray>, QString>
        cases[] = {
            {RichTextConversion{QByteArray("{\\rtf1 essai}"), "Texte rendu"}, "{\\rtf1 essai}",
             "Texte rendu"},
            {RichTextConversion{std::nullopt, "Sans RTF"}, std::nullopt, "Sans RTF"},
            {std::nullopt, std::nullopt, {}}, // not imported: the document and the text version
        };
    for (const auto &[answer, rtf, text] : cases) {
        desktop->conversion = answer;
        store->copyHTML();
        EXPECT_EQ(desktop->converted.last(), store->generatedHTML().toUtf8());
        EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        EXPECT_EQ(clipboardContent().hasFormat(kRtfType), rtf.has_value());
        EXPECT_EQ(clipboardContent().data(kRtfType), rtf.value_or(QByteArray()));
        EXPECT_EQ(clipboardContent().text(), text.isEmpty() ? store->generatedText() : text);
        EXPECT_EQ(store->lastAction(), platformMailAppTexts().mailCopied);
    }
}
