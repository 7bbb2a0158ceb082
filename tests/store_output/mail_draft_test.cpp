#include "output_fixture.h"

#include "mail_app_texts.h"
#include "mail_draft_script.h"
#include "qt_services.h"

#include <QElapsedTimer>
#include <QStandardPaths>

#include <utility>
#include <vector>

using namespace velino;
using velino::test::OutputTest;

namespace {

const MailAppTexts &kTexts = platformMailAppTexts();
const QString kFallbackAlert = kTexts.fallbackOpened;
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
                                 "lastAction: " + kTexts.draftOpened}));
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
    const QString permission = kTexts.automationRefused;
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
         kTexts.applicationMissing},
        {"refused with a message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, "  Mail a refuse le brouillon.\n", 1743}, draftRun,
         "Mail a refuse le brouillon."},
        {"blank message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, " ", 42}, draftRun, permission},
        {"no message", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{false, {}, {}}, draftRun, permission},
        {"not prepared", "client@example.com", "atelier@korvel.example", true,
         DraftFailure{true, "ignore", 7}, draftRun, kTexts.bridgeUnavailable},
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

namespace {

// Sets environment variables for the life of the object, then restores them.
class ScopedEnvironment {
public:
    ~ScopedEnvironment() {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
            if (it->second)
                qputenv(it->first, *it->second);
            else
                qunsetenv(it->first);
        }
    }
    void set(const char *name, const QString &value) {
        remember(name);
        qputenv(name, QFile::encodeName(value));
    }
    void unset(const char *name) {
        remember(name);
        qunsetenv(name);
    }

private:
    void remember(const char *name) {
        saved_.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name))
                                                                  : std::nullopt);
    }
    std::vector<std::pair<const char *, std::optional<QByteArray>>> saved_;
};

void writeExecutable(const QString &path, const QByteArray &content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    ASSERT_TRUE(file.setPermissions(file.permissions() | QFileDevice::ExeOwner));
}

} // namespace

// The platform's own xdg-open, in a desktop where nothing handles mailto: links: its failure
// reaches the store, which shows the bridge's error; once a handler exists, the fallback
// opens through it.
TEST_F(MailDraftTest, RealXdgOpenWithoutAMailtoHandlerEndsInTheBridgeError) {
    ASSERT_FALSE(QStandardPaths::findExecutable("xdg-open").isEmpty())
        << "xdg-open is missing; scripts/install-deps installs xdg-utils";
    ScopedEnvironment env;
    const QString xdg = dir.filePath("xdg");
    for (const auto &[name, folder] :
         {std::pair("XDG_CONFIG_HOME", "config"), std::pair("XDG_CONFIG_DIRS", "config-dirs"),
          std::pair("XDG_DATA_HOME", "data"), std::pair("XDG_DATA_DIRS", "data-dirs")}) {
        ASSERT_TRUE(QDir().mkpath(xdg + "/" + folder + "/applications"));
        env.set(name, xdg + "/" + folder);
    }
    for (const char *name :
         {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION", "GNOME_DESKTOP_SESSION_ID",
          "MATE_DESKTOP_SESSION_ID", "LXQT_SESSION_CONFIG"})
        env.unset(name);
    env.set("BROWSER", xdg + "/no-browser"); // nor any web browser to fall back on
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        env.set("DISPLAY", ":0"); // xdg-open looks for scheme handlers only with a display

    urls = std::make_shared<DesktopUrlOpener>();
    mailApp->installed = false;
    const auto store = storeWith("client@example.com", "atelier@korvel.example");
    QElapsedTimer elapsed;
    elapsed.start();
    store->openAppleMailDraft();
    EXPECT_LT(elapsed.elapsed(), DesktopUrlOpener::kXdgOpenWaitMilliseconds);
    EXPECT_EQ(*log,
              (QStringList{"findApplication", "clipboard", "alert: " + kTexts.applicationMissing}));
    EXPECT_EQ(store->lastAction(), "Application prete.");

    const QString received = xdg + "/received";
    writeExecutable(xdg + "/handler.sh",
                    "#!/bin/sh\nprintf '%s' \"$1\" > '" + QFile::encodeName(received) + "'\n");
    writeExecutable(
        xdg + "/data/applications/velino-test-mail.desktop",
        "[Desktop Entry]\nType=Application\nName=Courrier\nExec=" + QFile::encodeName(xdg) +
            "/handler.sh %u\nMimeType=x-scheme-handler/mailto;\n");
    writeExecutable(xdg + "/config/mimeapps.list",
                    "[Default Applications]\nx-scheme-handler/mailto=velino-test-mail.desktop\n");
    log->clear();
    store->openAppleMailDraft();
    EXPECT_EQ(*log, (QStringList{"findApplication", "clipboard", "lastAction: " + kFallbackAction,
                                 "alert: " + kFallbackAlert}));
    QFile link(received);
    ASSERT_TRUE(link.open(QIODevice::ReadOnly));
    EXPECT_EQ(link.readAll(), "mailto:client@example.com?subject=Devis%20pret");
}
