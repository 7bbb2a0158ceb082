#include "output_fixture.h"

using namespace velino;
using velino::test::OutputTest;

static const MailAppTexts &kTexts = platformMailAppTexts();

class MailDraftTest : public OutputTest {
protected:
    std::unique_ptr<ComposerStore> storeWith(const QString &recipient, const QString &sender) {
        auto store = makeOutputStore();
        store->setDataField("recipientEmail", recipient);
        store->setDataField("senderEmail", sender);
        store->setDataField("subject", "Devis pret");
        return store;
    }
};

TEST_F(MailDraftTest, DraftCreatedInTheMailApplication) {
    const auto store =
        storeWith(" client@example.com \n", QString::fromUtf16(u"\u00A0atelier@korvel.example "));
    QGuiApplication::clipboard()->setText("autre"); // replaced or not
    store->openAppleMailDraft();
    EXPECT_EQ(desktop->log, QStringList({"findApplication", "launchApplication", "runDraft",
                                         "lastAction: " + kTexts.draftOpened}));
    ASSERT_EQ(desktop->drafts.size(), 1);
    const MailDraft &draft = desktop->drafts[0]; // the script is MailDraftScript's own test's
    EXPECT_EQ(QStringList({draft.subject, draft.recipient, draft.sender, draft.html}),
              QStringList({"Devis pret", "client@example.com", "atelier@korvel.example",
                           store->generatedHTML()}));
    EXPECT_EQ(clipboardContent().text(), "autre");
}

TEST_F(MailDraftTest, EveryFailureEndsInTheFallbackOrItsOwnMessage) {
    const QString blank = QString::fromUtf16(u" \t\u00A0\n");
    const QString client = "client@example.com", atelier = "atelier@korvel.example";
    const QStringList run{"findApplication", "launchApplication", "runDraft"};
    const std::tuple<QString, QString, bool, std::optional<DraftFailure>, QStringList, QString>
        cases[] = {
            {blank, blank, true, {}, {}, "Renseigne l'email du client avant l'envoi."},
            {client, blank, true, {}, {}, "Renseigne l'email expediteur avant l'envoi."},
            {client, atelier, false, {}, {"findApplication"}, kTexts.applicationMissing},
            {client, atelier, true, DraftFailure{false, "  Mail a refuse le brouillon.\n", 1743},
             run, "Mail a refuse le brouillon."},
            {client, atelier, true, DraftFailure{false, {}, {}}, run, kTexts.automationRefused},
            {client, atelier, true, DraftFailure{true, "ignore", 7}, run, kTexts.bridgeUnavailable},
        };
    for (const auto &[recipient, sender, installed, failure, before, message] : cases) {
        desktop->mailAppInstalled = installed;
        desktop->draftFailure = failure;
        const QString link = QStringLiteral("openUrl: mailto:%1?subject=Devis%20pret")
                                 .arg(recipient == blank ? "" : client);
        for (const bool opens : {true, false}) {
            SCOPED_TRACE(message.toStdString() + (opens ? "" : ", link refused"));
            desktop->accepts = opens;
            const auto store = storeWith(recipient, sender);
            store->openAppleMailDraft();
            const QStringList after = opens
                                          ? QStringList{"lastAction: Mail ouvert en mode secours.",
                                                        "alert: " + kTexts.fallbackOpened}
                                          : QStringList{"alert: " + message};
            EXPECT_EQ(desktop->log, (before + QStringList{"clipboard", link} + after));
            EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
        }
    }
}
