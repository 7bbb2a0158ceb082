#include "output_fixture.h"

#include "qt_services.h"

#include <QProcessEnvironment>
#include <QScopeGuard>
#include <QStandardPaths>

using namespace velino;
using velino::test::OutputTest;

namespace {
const MailAppTexts &kTexts = platformMailAppTexts();
const QString kFallbackAction = QStringLiteral("Mail ouvert en mode secours.");
} // namespace

class MailDraftTest : public OutputTest {
protected:
    std::unique_ptr<ComposerStore> storeWith(const QString &recipient, const QString &sender) {
        auto store = makeOutputStore();
        MailComposerData data = store->data();
        data.recipientEmail = recipient;
        data.senderEmail = sender;
        data.subject = QStringLiteral("Devis pret");
        store->setData(data);
        desktop->log.clear();
        return store;
    }
};

TEST_F(MailDraftTest, DraftCreatedInTheMailApplication) {
    const auto store =
        storeWith(" client@example.com \n", QString::fromUtf16(u"\u00A0atelier@korvel.example "));
    putOtherTextOnClipboard();
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
            const QStringList after = opens ? QStringList{"lastAction: " + kFallbackAction,
                                                          "alert: " + kTexts.fallbackOpened}
                                            : QStringList{"alert: " + message};
            EXPECT_EQ(desktop->log, (before + QStringList{"clipboard", link} + after));
            EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
            EXPECT_TRUE(clipboardContent().hasFormat("text/rtf"));
        }
    }
}

// The platform's xdg-open, where nothing handles mailto: links, fails in time.
TEST_F(MailDraftTest, RealXdgOpenWithoutAMailtoHandlerEndsInTheBridgeError) {
    ASSERT_FALSE(QStandardPaths::findExecutable("xdg-open").isEmpty())
        << "xdg-open is missing; scripts/install-deps installs xdg-utils";
    const QString xdg = dir.filePath("xdg");
    const QStringList names =
        QStringLiteral(
            "XDG_CONFIG_HOME XDG_CONFIG_DIRS XDG_DATA_HOME XDG_DATA_DIRS BROWSER DISPLAY "
            "XDG_CURRENT_DESKTOP DESKTOP_SESSION KDE_FULL_SESSION GNOME_DESKTOP_SESSION_ID "
            "MATE_DESKTOP_SESSION_ID LXQT_SESSION_CONFIG")
            .split(u' ');
    const QProcessEnvironment earlier = QProcessEnvironment::systemEnvironment();
    const auto restore = qScopeGuard([&] {
        for (const QString &name : names)
            earlier.contains(name) ? qputenv(qPrintable(name), earlier.value(name).toLocal8Bit())
                                   : qunsetenv(qPrintable(name));
    });
    for (const QString &name : names.mid(0, 4)) {
        const QString folder = xdg + "/" + name.toLower();
        ASSERT_TRUE(QDir().mkpath(folder + "/applications"));
        qputenv(qPrintable(name), QFile::encodeName(folder));
    }
    for (const QString &name : names.mid(6)) // a generic desktop, without a browser either
        qunsetenv(qPrintable(name));
    qputenv("BROWSER", QFile::encodeName(xdg + "/no-browser"));
    if (!earlier.contains("DISPLAY"))
        qputenv("DISPLAY", ":0"); // xdg-open looks for scheme handlers only with a display

    urls = std::make_shared<DesktopUrlOpener>();
    desktop->mailAppInstalled = false;
    const auto store = storeWith("client@example.com", "atelier@korvel.example");
    QElapsedTimer elapsed;
    elapsed.start();
    store->openAppleMailDraft();
    EXPECT_LT(elapsed.elapsed(), DesktopUrlOpener::kXdgOpenWaitMilliseconds);
    EXPECT_EQ(desktop->log,
              (QStringList{"findApplication", "clipboard", "alert: " + kTexts.applicationMissing}));
}
