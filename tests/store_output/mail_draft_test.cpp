#include "output_fixture.h"

#include "mail_app_texts.h"
#include "mail_draft_script.h"
#include "qt_services.h"

#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QStandardPaths>

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
        desktop->log.clear();
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

    EXPECT_EQ(desktop->log, QStringList({"findApplication", "launchApplication", "runDraft",
                                         "lastAction: " + kTexts.draftOpened}));
    ASSERT_EQ(desktop->drafts.size(), 1);
    const MailDraft &draft = desktop->drafts[0];
    EXPECT_EQ(QStringList({draft.subject, draft.recipient, draft.sender, draft.html}),
              QStringList({store->generatedSubject(), "client@example.com",
                           "atelier@korvel.example", store->generatedHTML()}));
    EXPECT_EQ(draft.subject, "Devis pret");
    EXPECT_EQ(draft.script, mailDraftScript("Devis pret", "client@example.com",
                                            "atelier@korvel.example", store->generatedHTML()));
    EXPECT_EQ(clipboardContent().text(), "autre contenu");
    EXPECT_TRUE(desktop->opened.isEmpty() && desktop->shown.isEmpty());
}

// Whatever stops the draft, the content is copied and a plain new mail is opened; when even
// that link is refused, the reason is shown instead and the last action stays.
TEST_F(MailDraftTest, EveryFailureEndsInTheFallbackOrItsOwnMessage) {
    const QString blank = QString::fromUtf16(u" \t\u00A0\n");
    const QString client = "client@example.com", atelier = "atelier@korvel.example";
    const QStringList draftRun{"findApplication", "launchApplication", "runDraft"};
    struct Case {
        const char *what;
        QString recipient, sender;
        bool installed;
        std::optional<DraftFailure> failure;
        QStringList before; // the calls before the copy
        QString message;
    };
    const Case cases[] = {
        // The mail application is not even looked for.
        {"no recipient", blank, blank, true, {}, {}, "Renseigne l'email du client avant l'envoi."},
        {"no sender", client, blank, true, {}, {}, "Renseigne l'email expediteur avant l'envoi."},
        {"no mail application",
         client,
         atelier,
         false,
         {},
         {"findApplication"},
         kTexts.applicationMissing},
        {"refused with a message", client, atelier, true,
         DraftFailure{false, "  Mail a refuse le brouillon.\n", 1743}, draftRun,
         "Mail a refuse le brouillon."},
        {"blank message", client, atelier, true, DraftFailure{false, " ", 42}, draftRun,
         kTexts.automationRefused},
        {"no message", client, atelier, true, DraftFailure{false, {}, {}}, draftRun,
         kTexts.automationRefused},
        {"not prepared", client, atelier, true, DraftFailure{true, "ignore", 7}, draftRun,
         kTexts.bridgeUnavailable},
    };
    for (const Case &c : cases) {
        desktop->mailAppInstalled = c.installed;
        desktop->draftFailure = c.failure;
        const QString link = QStringLiteral("openUrl: mailto:%1?subject=Devis%20pret")
                                 .arg(c.recipient == blank ? "" : client);
        for (const bool opens : {true, false}) {
            SCOPED_TRACE(std::string(c.what) + (opens ? "" : ", link refused"));
            desktop->accepts = opens;
            const auto store = storeWith(c.recipient, c.sender);
            store->openAppleMailDraft();
            const QStringList after =
                opens ? QStringList{"lastAction: " + kFallbackAction, "alert: " + kFallbackAlert}
                      : QStringList{"alert: " + c.message};
            EXPECT_EQ(desktop->log, (c.before + QStringList{"clipboard", link} + after));
            EXPECT_EQ(store->lastAction(), opens ? kFallbackAction : "Application prete.");
            expectRichCopyOf(*store);
        }
    }
    EXPECT_EQ(desktop->drafts.size(), 8);
}

TEST_F(MailDraftTest, FallbackCopyFollowsTheImportFailureRule) {
    desktop->scripted = true; // cannot import anything
    const auto store = storeWith("", "");
    store->openAppleMailDraft();
    EXPECT_EQ(clipboardContent().html(), store->generatedHTML());
    EXPECT_FALSE(clipboardContent().hasFormat("text/rtf"));
    EXPECT_EQ(clipboardContent().text(), store->generatedText());
    EXPECT_EQ(store->lastAction(), kFallbackAction);
}

namespace {

// Sets and unsets environment variables; the destructor puts the earlier values back.
class ScopedEnvironment {
public:
    ~ScopedEnvironment() {
        for (const char *name : changed) {
            if (saved.contains(name))
                qputenv(name, saved.value(name).toLocal8Bit());
            else
                qunsetenv(name);
        }
    }
    void set(const char *name, const QString &value) {
        changed.append(name);
        qputenv(name, QFile::encodeName(value));
    }
    void unset(const char *name) {
        changed.append(name);
        qunsetenv(name);
    }

private:
    const QProcessEnvironment saved = QProcessEnvironment::systemEnvironment();
    QList<const char *> changed;
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
    desktop->mailAppInstalled = false;
    const auto store = storeWith("client@example.com", "atelier@korvel.example");
    QElapsedTimer elapsed;
    elapsed.start();
    store->openAppleMailDraft();
    EXPECT_LT(elapsed.elapsed(), DesktopUrlOpener::kXdgOpenWaitMilliseconds);
    EXPECT_EQ(desktop->log,
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
    desktop->log.clear();
    store->openAppleMailDraft();
    EXPECT_EQ(desktop->log,
              (QStringList{"findApplication", "clipboard", "lastAction: " + kFallbackAction,
                           "alert: " + kFallbackAlert}));
    QFile link(received);
    ASSERT_TRUE(link.open(QIODevice::ReadOnly));
    EXPECT_EQ(link.readAll(), "mailto:client@example.com?subject=Devis%20pret");
}
