#include "output_fixture.h"

#include "mail_app_texts.h"
#include "qt_services.h"

#include <QJsonDocument>

using namespace velino;
using velino::test::OutputTest;
using velino::test::ScriptedRichText;

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
        const auto store = makeOutputStore();
        const QString subject = QStringLiteral("Objet avant %1").arg(QLatin1String(name));
        store->setDataField("subject", subject);
        EXPECT_NE(store->generatedSubject(), subject) << name; // the debounce has not fired
        (store.get()->*action)();
        EXPECT_EQ(store->generatedSubject(), subject) << name;
        EXPECT_TRUE(store->generatedHTML().contains(subject)) << name;
        EXPECT_EQ(savedSubject(), subject) << name;
        EXPECT_EQ(store->saveStatus(), QString::fromUtf16(u"Sauvegarde locale active \u00B7 14:07"))
            << name;
    }
}

TEST_F(OutputTest, CopySubjectAndTextVersionPutOnePlainStringOnTheClipboard) {
    const auto store = makeOutputStore();
    putOtherTextOnClipboard();
    store->setDataField("subject", QString::fromUtf16(u"R\u00E9paration \u00E9cran \U0001F4F1"));
    store->copySubject();
    EXPECT_EQ(clipboardContent().text(),
              QString::fromUtf16(u"R\u00E9paration \u00E9cran \U0001F4F1"));
    EXPECT_FALSE(clipboardContent().hasHtml());
    EXPECT_FALSE(clipboardContent().hasFormat(kRtfType));
    EXPECT_EQ(store->lastAction(), "Objet copie.");

    store->setDataField("mailBody", "Votre appareil vous attend a l'atelier.");
    store->copyPlainText();
    EXPECT_TRUE(store->generatedText().contains("Votre appareil vous attend a l'atelier."));
    EXPECT_EQ(clipboardContent().text(), store->generatedText());
    EXPECT_FALSE(clipboardContent().hasHtml());
    EXPECT_FALSE(clipboardContent().hasFormat(kRtfType));
    EXPECT_EQ(store->lastAction(), "Version texte copiee.");

    EXPECT_EQ(*log, QStringList({"clipboard", "lastAction: Objet copie.", "clipboard",
                                 "lastAction: Version texte copiee."}));
    EXPECT_TRUE(shownAlerts->shown.isEmpty());
}

TEST_F(OutputTest, CopyHtmlOffersTheDocumentItsRtfAndTheImportedCharacters) {
    const auto store = makeOutputStore();
    putOtherTextOnClipboard();
    store->copyHTML();
    EXPECT_EQ(store->lastAction(), platformMailAppTexts().mailCopied);
    EXPECT_EQ(*log, QStringList({"clipboard", "lastAction: " + platformMailAppTexts().mailCopied}));

    const std::optional<RichTextConversion> expected =
        QtRichTextConverter().convert(store->generatedHTML().toUtf8());
    ASSERT_TRUE(expected);
    ASSERT_TRUE(expected->rtf);
    const QMimeData &clip = clipboardContent();
    EXPECT_EQ(clip.html(), store->generatedHTML());
    EXPECT_TRUE(clip.hasFormat(kRtfType));
    EXPECT_EQ(clip.data(kRtfType), *expected->rtf);
    EXPECT_TRUE(clip.data(kRtfType).startsWith("{\\rtf1"));
    // The characters of the styled document, not the separately written text version.
    EXPECT_EQ(clip.text(), expected->plainText);
    EXPECT_NE(clip.text(), store->generatedText());
    EXPECT_TRUE(clip.text().contains(store->data().recipientName.trimmed()));
}

TEST_F(OutputTest, CopyHtmlPassesTheConvertersRepresentationsThrough) {
    auto converter = std::make_shared<ScriptedRichText>();
    richText = converter;
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
        converter->answer = c.answer;
        store->copyHTML();
        EXPECT_EQ(converter->inputs.last(), store->generatedHTML().toUtf8());
        EXPECT_TRUE(store->generatedHTML().contains("Le diagnostic est termine."));
        EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        EXPECT_EQ(clipboardContent().hasFormat(kRtfType), c.rtf.has_value());
        if (c.rtf) {
            EXPECT_EQ(clipboardContent().data(kRtfType), *c.rtf);
        }
        EXPECT_EQ(clipboardContent().text(), c.text.isEmpty() ? store->generatedText() : c.text);
        EXPECT_EQ(store->lastAction(), platformMailAppTexts().mailCopied);
    }
    EXPECT_EQ(converter->inputs.size(), 3);
    EXPECT_EQ(log->count("clipboard"), 3);
}

TEST_F(OutputTest, BlankAndHostileRecordsAreCopiedLikeAnyOther) {
    for (const MailComposerData &record : {MailComposerData::blank(), hostileRecord()}) {
        const auto store = makeOutputStore();
        store->setData(record);
        store->copyHTML();
        EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        EXPECT_TRUE(clipboardContent().hasFormat(kRtfType));
        store->copySubject();
        EXPECT_EQ(clipboardContent().text(), store->generatedSubject());
        EXPECT_FALSE(store->generatedSubject().isEmpty());
        store->copyPlainText();
        EXPECT_EQ(clipboardContent().text(), store->generatedText());
        EXPECT_EQ(store->lastAction(), "Version texte copiee.");
    }
}
