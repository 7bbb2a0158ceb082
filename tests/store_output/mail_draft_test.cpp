#include "output_fixture.h"

using namespace velino;
using velino::test::OutputTest;

namespace {

const QString kFallbackAlert = QStringLiteral(
    "Apple Mail n'a pas pu creer le brouillon HTML automatiquement. Un nouveau mail a ete "
    "ouvert avec l'objet et le destinataire, et le contenu complet a ete copie dans le "
    "presse-papiers.");
const QString kFallbackAction = QStringLiteral("Mail ouvert en mode secours.");

DraftFailure failureOf(bool notPrepared, std::optional<QString> message,
                       std::optional<int> number) {
    DraftFailure failure;
    failure.notPrepared = notPrepared;
    failure.message = std::move(message);
    failure.number = number;
    return failure;
}

} // namespace

class MailDraftTest : public OutputTest {
protected:
    // A store whose recipient, sender and subject are the given ones, with the log emptied.
    std::unique_ptr<ComposerStore> storeWith(const QString &recipient, const QString &sender) {
        auto store = makeOutputStore();
        MailComposerData data = store->data();
        data.recipientEmail = recipient;
        data.senderEmail = sender;
        data.subject = QStringLiteral("Devis pret");
        store->setData(data);
        log->clear();
        return store;
    }

    // The rich copy made for pasting by hand: the document and its RTF.
    void expectRichCopyOf(const ComposerStore &store) {
        EXPECT_EQ(clipboardContent().html(), store.generatedHTML());
        EXPECT_TRUE(clipboardContent().hasFormat("text/rtf"));
        EXPECT_NE(clipboardContent().text(), store.generatedText()); // the imported characters
        EXPECT_FALSE(clipboardContent().text().isEmpty());
    }
};

TEST_F(MailDraftTest, DraftCreatedInTheMailApplication) {
    const auto store = storeWith(" client@example.com \n", "atelier@korvel.example");
    putOtherTextOnClipboard();
    store->openAppleMailDraft();

    EXPECT_EQ(*log, QStringList({"findApplication", "launchApplication", "runDraft",
                                 "lastAction: Brouillon ouvert dans Apple Mail."}));
    ASSERT_EQ(mailApp->drafts.size(), 1);
    const MailDraft &draft = mailApp->drafts[0];
    EXPECT_EQ(draft.subject, "Devis pret");
    EXPECT_EQ(draft.subject, store->generatedSubject());
    EXPECT_EQ(draft.recipient, "client@example.com");
    EXPECT_EQ(draft.sender, "atelier@korvel.example");
    EXPECT_EQ(draft.html, store->generatedHTML());
    EXPECT_EQ(clipboardContent().text(), "autre contenu");
    EXPECT_TRUE(opener->opened.isEmpty());
    EXPECT_TRUE(shownAlerts->shown.isEmpty());
}

TEST_F(MailDraftTest, MissingRecipientCopiesThenOpensALinkWithoutAddress) {
    const auto store = storeWith("   ", "");
    store->openAppleMailDraft();

    // The mail application is not even looked for.
    EXPECT_EQ(*log, QStringList({"clipboard", "openUrl: mailto:?subject=Devis%20pret",
                                 "lastAction: " + kFallbackAction, "alert: " + kFallbackAlert}));
    EXPECT_EQ(store->lastAction(), kFallbackAction);
    expectRichCopyOf(*store);
}

TEST_F(MailDraftTest, RefusedFallbackShowsTheBridgesMessageAndKeepsTheLastAction) {
    opener->accepts = false;
    const QList<std::pair<QString, QString>> cases = {
        {"", "Renseigne l'email du client avant l'envoi."},
        {"client@example.com", "Renseigne l'email expediteur avant l'envoi."}};
    for (const auto &[recipient, message] : cases) {
        const auto store = storeWith(recipient, " ");
        store->openAppleMailDraft();
        const QString link = recipient.isEmpty()
                                 ? QStringLiteral("mailto:?subject=Devis%20pret")
                                 : QStringLiteral("mailto:client@example.com?subject=Devis%20pret");
        EXPECT_EQ(*log, QStringList({"clipboard", "openUrl: " + link, "alert: " + message}));
        EXPECT_EQ(store->lastAction(), "Application prete.");
        expectRichCopyOf(*store);
    }
}

TEST_F(MailDraftTest, NoMailApplicationEndsInTheFallback) {
    mailApp->installed = false;
    const auto store = storeWith("client@example.com", "atelier@korvel.example");
    store->openAppleMailDraft();
    EXPECT_EQ(*log, QStringList({"findApplication", "clipboard",
                                 "openUrl: mailto:client@example.com?subject=Devis%20pret",
                                 "lastAction: " + kFallbackAction, "alert: " + kFallbackAlert}));
    expectRichCopyOf(*store);

    opener->accepts = false;
    log->clear();
    store->copySubject();
    store->openAppleMailDraft();
    EXPECT_EQ(shownAlerts->shown.last(), "Apple Mail est introuvable sur ce Mac.");
    EXPECT_EQ(store->lastAction(), "Objet copie.");
    EXPECT_TRUE(mailApp->drafts.isEmpty());
}

TEST_F(MailDraftTest, MailApplicationFailuresEndInTheFallbackOrTheirOwnMessage) {
    const QString permission = QStringLiteral(
        "Apple Mail n'a pas pu creer le brouillon automatiquement. Verifie l'autorisation "
        "Automation de Velino dans Reglages Systeme > Confidentialite et securite.");
    struct Case {
        DraftFailure failure;
        QString message;
    };
    QList<Case> cases;
    cases.append({failureOf(false, QStringLiteral("  Mail a refuse le brouillon.\n"), 1743),
                  QStringLiteral("Mail a refuse le brouillon.")});
    cases.append({failureOf(false, QStringLiteral(" "), 42), permission});
    cases.append({failureOf(false, std::nullopt, std::nullopt), permission});
    cases.append({failureOf(true, QStringLiteral("ignore"), 7),
                  QStringLiteral("Impossible de preparer le pont Apple Mail dans cette app.")});
    for (const Case &c : cases) {
        mailApp->failure = c.failure;
        const std::string label = c.message.toStdString();

        opener->accepts = true;
        auto store = storeWith("client@example.com", "atelier@korvel.example");
        store->openAppleMailDraft();
        EXPECT_EQ(*log,
                  QStringList({"findApplication", "launchApplication", "runDraft", "clipboard",
                               "openUrl: mailto:client@example.com?subject=Devis%20pret",
                               "lastAction: " + kFallbackAction, "alert: " + kFallbackAlert}))
            << label;
        expectRichCopyOf(*store);

        opener->accepts = false;
        store = storeWith("client@example.com", "atelier@korvel.example");
        store->openAppleMailDraft();
        EXPECT_EQ(
            log->mid(3),
            QStringList({"clipboard", "openUrl: mailto:client@example.com?subject=Devis%20pret",
                         "alert: " + c.message}))
            << label;
        EXPECT_EQ(store->lastAction(), "Application prete.") << label;
    }
}

TEST_F(MailDraftTest, FallbackCopyFollowsTheImportFailureRule) {
    richText = std::make_shared<test::ScriptedRichText>(); // cannot import anything
    const auto store = storeWith("", "");
    store->openAppleMailDraft();
    EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
    EXPECT_FALSE(clipboardContent().hasFormat("text/rtf"));
    EXPECT_EQ(clipboardContent().text(), store->generatedText());
    EXPECT_EQ(store->lastAction(), kFallbackAction);
}
