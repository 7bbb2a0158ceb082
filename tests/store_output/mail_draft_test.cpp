#include "output_fixture.h"

#include "mail_draft_script.h"

using namespace velino;
using velino::test::OutputTest;

namespace {

const QString kFallbackAlert = QStringLiteral(
    "Apple Mail n'a pas pu creer le brouillon HTML automatiquement. Un nouveau mail a ete "
    "ouvert avec l'objet et le destinataire, et le contenu complet a ete copie dans le "
    "presse-papiers.");
const QString kFallbackAction = QStringLiteral("Mail ouvert en mode secours.");

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
    const auto store =
        storeWith(" client@example.com \n", QString::fromUtf16(u"\u00A0atelier@korvel.example "));
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
    EXPECT_EQ(draft.script, mailDraftScript("Devis pret", "client@example.com",
                                            "atelier@korvel.example", store->generatedHTML()));
    EXPECT_EQ(clipboardContent().text(), "autre contenu");
    EXPECT_TRUE(opener->opened.isEmpty());
    EXPECT_TRUE(shownAlerts->shown.isEmpty());
}

// Whatever stops the draft, the content is copied and a plain new mail is opened; when even
// that link is refused, the reason is shown instead and the last action stays.
TEST_F(MailDraftTest, EveryFailureEndsInTheFallbackOrItsOwnMessage) {
    const QString blank = QString::fromUtf16(u" \t\u00A0\n");
    const QString permission = QStringLiteral(
        "Apple Mail n'a pas pu creer le brouillon automatiquement. Verifie l'autorisation "
        "Automation de Velino dans Reglages Systeme > Confidentialite et securite.");
    const QStringList draftRun{"findApplication", "launchApplication", "runDraft"};
    struct Case {
        const char *what;
        QString recipient;
        QString sender;
        bool installed;
        std::optional<DraftFailure> failure;
        QStringList before; // the calls before the copy
        QString message;
    };
    const Case cases[] = {
        // The mail application is not even looked for.
        {"no recipient", blank, blank, true, {}, {}, "Renseigne l'email du client avant l'envoi."},
        {"no sender",
         "client@example.com",
         blank,
         true,
         {},
         {},
         "Renseigne l'email expediteur avant l'envoi."},
        {"no mail application",
         "client@example.com",
         "atelier@korvel.example",
         false,
         {},
         {"findApplication"},
         "Apple Mail est introuvable sur ce Mac."},
        {"refused with a message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, "  Mail a refuse le brouillon.\n", 1743}, draftRun,
         "Mail a refuse le brouillon."},
        {"blank message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, " ", 42}, draftRun, permission},
        {"no message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, {}, {}}, draftRun, permission},
        {"not prepared", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{true, "ignore", 7}, draftRun,
         "Impossible de preparer le pont Apple Mail dans cette app."},
    };
    for (const Case &c : cases) {
        mailApp->installed = c.installed;
        mailApp->failure = c.failure;
        const QString link =
            c.recipient == blank
                ? QStringLiteral("openUrl: mailto:?subject=Devis%20pret")
                : QStringLiteral("openUrl: mailto:client@example.com?subject=Devis%20pret");
        for (const bool opens : {true, false}) {
            opener->accepts = opens;
            const auto store = storeWith(c.recipient, c.sender);
            store->openAppleMailDraft();
            const QStringList after =
                opens ? QStringList{"lastAction: " + kFallbackAction, "alert: " + kFallbackAlert}
                      : QStringList{"alert: " + c.message};
            EXPECT_EQ(*log, (c.before + QStringList{"clipboard", link} + after))
                << c.what << (opens ? "" : ", link refused");
            EXPECT_EQ(store->lastAction(), opens ? kFallbackAction : "Application prete.")
                << c.what;
            expectRichCopyOf(*store);
        }
    }
    EXPECT_EQ(mailApp->drafts.size(), 8);
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
