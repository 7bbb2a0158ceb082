#include "output_fixture.h"

#include "mail_app_texts.h"

using namespace velino;
using velino::test::OutputTest;

namespace {

const QString kRtfType = QStringLiteral("text/rtf");

MailComposerData hostileRecord() {
    const QJsonObject json =
        QJsonDocument::fromJson(test::readTestData("hostile_record.json")).object();
    QString error;
    const std::optional<MailComposerData> record =
        MailComposerData::fromJson(json, QString(), &error);
    EXPECT_TRUE(record) << error.toStdString();
    return record.value_or(MailComposerData::blank());
}

} // namespace

TEST_F(OutputTest, EveryActionRegeneratesAndSavesTheEditBeforeActing) {
    const QList<std::pair<const char *, void (ComposerStore::*)()>> actions = {
        {"copySubject", &ComposerStore::copySubject},
        {"copyPlainText", &ComposerStore::copyPlainText},
        {"copyHTML", &ComposerStore::copyHTML},
        {"exportHTML", &ComposerStore::exportHTML},
        {"openStandalonePreview", &ComposerStore::openStandalonePreview},
        {"openAppleMailDraft", &ComposerStore::openAppleMailDraft}};
    for (const auto &[name, action] : actions) {
        SCOPED_TRACE(name);
        const auto store = makeOutputStore();
        const QString subject = QStringLiteral("Objet avant %1").arg(QLatin1String(name));
        store->setDataField("subject", subject);
        EXPECT_NE(store->generatedSubject(), subject); // the debounce has not fired
        (store.get()->*action)();
        EXPECT_EQ(store->generatedSubject(), subject);
        EXPECT_TRUE(store->generatedHTML().contains(subject));
        EXPECT_EQ(savedSubject(), subject);
        EXPECT_EQ(store->saveStatus(), test::kSavedStatus);
    }
}

// The subject and the text version go as one plain string, whatever the record holds.
TEST_F(OutputTest, CopySubjectAndTextVersionPutOnePlainStringOnTheClipboard) {
    const QString subject = QString::fromUtf16(u"R\u00E9paration \u00E9cran \U0001F4F1");
    for (const MailComposerData &record :
         {test::defaultWith(u"subject", subject), MailComposerData::blank(), hostileRecord()}) {
        const auto store = makeOutputStore();
        store->setData(record);
        putOtherTextOnClipboard();
        store->copySubject();
        EXPECT_EQ(clipboardContent().text(), store->generatedSubject());
        EXPECT_TRUE(record.subject != subject || store->generatedSubject() == subject);
        EXPECT_FALSE(store->generatedSubject().isEmpty());
        EXPECT_FALSE(clipboardContent().hasHtml() || clipboardContent().hasFormat(kRtfType));
        store->copyPlainText();
        EXPECT_EQ(clipboardContent().text(), store->generatedText());
        EXPECT_FALSE(clipboardContent().hasHtml() || clipboardContent().hasFormat(kRtfType));
        EXPECT_EQ(desktop->log.join(" | "), "clipboard | lastAction: Objet copie. | clipboard | "
                                            "lastAction: Version texte copiee.");
        // The rich copy of any record offers the document and its RTF.
        store->copyHTML();
        EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        EXPECT_TRUE(clipboardContent().hasFormat(kRtfType));
    }
    EXPECT_TRUE(desktop->shown.isEmpty());
}

// What the real converter makes of the mail is QtRichTextConverter's own test's; the rich
// copy through it is checked with every mail fallback (mail_draft_test).
TEST_F(OutputTest, CopyHtmlPassesTheConvertersRepresentationsThrough) {
    desktop->scripted = true;
    const auto store = makeOutputStore();
    store->setDataField("mailBody", "Le diagnostic est termine.");
    struct Case {
        std::optional<RichTextConversion> answer;
        std::optional<QByteArray> rtf;
        QString text; // empty: the text version
    };
    const Case cases[] = {
        {RichTextConversion{QByteArray("{\\rtf1 essai}"), "Texte rendu"}, "{\\rtf1 essai}",
         "Texte rendu"},
        // The RTF could not be written: only that representation is missing.
        {RichTextConversion{std::nullopt, "Sans RTF"}, std::nullopt, "Sans RTF"},
        // The HTML could not be imported: the document and the text version are left.
        {std::nullopt, std::nullopt, {}},
    };
    for (const Case &c : cases) {
        desktop->conversion = c.answer;
        store->copyHTML();
        EXPECT_EQ(desktop->converted.last(), store->generatedHTML().toUtf8());
        EXPECT_TRUE(store->generatedHTML().contains("Le diagnostic est termine."));
        EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        EXPECT_EQ(clipboardContent().hasFormat(kRtfType), c.rtf.has_value());
        EXPECT_EQ(clipboardContent().data(kRtfType), c.rtf.value_or(QByteArray()));
        EXPECT_EQ(clipboardContent().text(), c.text.isEmpty() ? store->generatedText() : c.text);
        EXPECT_EQ(store->lastAction(), platformMailAppTexts().mailCopied);
    }
    EXPECT_EQ(desktop->converted.size(), 3);
    EXPECT_EQ(desktop->log.count("clipboard"), 3);
}
