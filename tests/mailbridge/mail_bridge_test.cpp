#include "fakes.h"
#include "mail_bridge.h"
#include "mail_draft_script.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::test;

namespace {

// The program, with "@" where each base64 value goes.
const QString scriptTemplate = R"(use framework "Foundation"
on decodeBase64(theValue)
    set decodedData to current application's NSData's alloc()'s initWithBase64EncodedString:theValue options:0
    if decodedData is missing value then return ""
    set decodedString to current application's NSString's alloc()'s initWithData:decodedData encoding:(current application's NSUTF8StringEncoding)
    return decodedString as text
end decodeBase64

set theSubject to decodeBase64("@")
set theRecipient to decodeBase64("@")
set theSender to decodeBase64("@")
set theHTML to decodeBase64("@")

tell application "Mail"
    activate
    delay 0.15
    set newMessage to make new outgoing message with properties {visible:true, subject:theSubject}
    tell newMessage
        make new to recipient at end of to recipients with properties {address:theRecipient}
        if theSender is not "" then set sender to theSender
        set html content to theHTML
    end tell
end tell)";

const QString automationText =
    "Apple Mail n'a pas pu creer le brouillon automatiquement. Verifie l'autorisation "
    "Automation de Velino dans Reglages Systeme > Confidentialite et securite.";

class FakeExecutor final : public MailAppExecutor {
public:
    QStringList log;
    bool installed = true;
    std::optional<DraftFailure> failure;
    MailDraft draft;
    bool findApplication() override { return log.append("find"), installed; }
    void launchApplication() override { log.append("launch"); }
    std::optional<DraftFailure> runDraft(const MailDraft &d) override {
        log.append("run");
        draft = d;
        return failure;
    }
};

struct Bridge : ::testing::Test {
    FakeOpener opener;
    FakeExecutor *executor = new FakeExecutor;
    MailBridge bridge{std::unique_ptr<MailAppExecutor>(executor), opener};

    std::pair<int, QString> compose(const QString &recipient, const QString &sender) {
        MailComposerData data = defaultWith(u"recipientEmail", recipient);
        data.senderEmail = sender;
        const std::optional<VelinoError> error = bridge.compose(MailTemplateContext(data));
        return error ? std::pair(error->code, error->description) : std::pair(0, QString());
    }
};

} // namespace

TEST(MailDraftScript, FixedTextWithBase64ValuesOnly) {
    const QString empty = mailDraftScript({}, {}, {}, {});
    EXPECT_EQ(empty, QString(scriptTemplate).remove(u'@')); // empty values, empty quotes
    EXPECT_EQ(empty.size(), 933);                           // the five fixed parts
    EXPECT_EQ(empty.count(u'\n'), 22);                      // 23 lines, no final line feed

    const QString values[] = {QString::fromUtf16(u"Devis \"x\" \\ end tell\n\u00E9\U0001F600"),
                              "o'neil@example.com", "\"a\"\r\n@b", "<p class=\"c\">\\</p>"};
    QString expected = scriptTemplate;
    for (const QString &value : values)
        expected.replace(expected.indexOf(u'@'), 1, value.toUtf8().toBase64());
    EXPECT_EQ(mailDraftScript(values[0], values[1], values[2], values[3]), expected);
    EXPECT_EQ(base64Utf8(QString::fromUtf16(u"\u00FF\u00FF\u00FEa")), "w7/Dv8O+YQ==");
    EXPECT_FALSE(base64Utf8(QString(300, u'x')).contains(u'\n'));
}

TEST_F(Bridge, ChecksRecipientThenSenderThenApplication) {
    const QString blank = QString::fromUtf16(u" \t\u00A0\n");
    EXPECT_EQ(compose(blank, ""),
              std::pair(1, QString("Renseigne l'email du client avant l'envoi.")));
    EXPECT_EQ(compose("a@b.fr", blank),
              std::pair(2, QString("Renseigne l'email expediteur avant l'envoi.")));
    EXPECT_TRUE(executor->log.isEmpty());
    executor->installed = false;
    EXPECT_EQ(compose("a@b.fr", "c@d.fr"),
              std::pair(3, QString("Apple Mail est introuvable sur ce Mac.")));
    EXPECT_EQ(executor->log, QStringList{"find"});
}

TEST_F(Bridge, HandsOverTheDraftAndMapsFailures) {
    MailComposerData data = defaultWith(u"recipientEmail", " client@example.com\n");
    data.senderEmail = QString::fromUtf16(u"\u00A0atelier@example.com ");
    const MailTemplateContext context(data);
    EXPECT_FALSE(bridge.compose(context).has_value());
    EXPECT_EQ(executor->log, (QStringList{"find", "launch", "run"}));
    EXPECT_EQ(executor->draft.script,
              mailDraftScript(context.subject, "client@example.com", "atelier@example.com",
                              context.htmlDocument()));
    EXPECT_EQ(executor->draft.html, context.htmlDocument());

    executor->failure = DraftFailure{true, {}, {}};
    EXPECT_EQ(compose("a@b.fr", "c@d.fr"),
              std::pair(4, QString("Impossible de preparer le pont Apple Mail dans cette app.")));
    executor->failure = DraftFailure{false, " Refus.\n", -1743};
    EXPECT_EQ(compose("a@b.fr", "c@d.fr"), std::pair(-1743, QString("Refus.")));
    executor->failure = DraftFailure{false, " \n", 12};
    EXPECT_EQ(compose("a@b.fr", "c@d.fr"), std::pair(12, automationText));
    executor->failure = DraftFailure{false, {}, {}};
    EXPECT_EQ(compose("a@b.fr", "c@d.fr"), std::pair(5, automationText));
}

TEST_F(Bridge, FallbackLinkEncodesTheSubjectButNotTheAddress) {
    const auto link = [](const QString &recipient, const QString &subject) {
        const std::optional<QUrl> url = MailBridge::fallbackMailURL(recipient, subject);
        return url ? url->toString(QUrl::FullyEncoded) : QString("<none>");
    };
    EXPECT_EQ(link("client@example.com", QString::fromUtf16(u"Devis & r\u00E9paration")),
              "mailto:client@example.com?subject=Devis%20%26%20r%C3%A9paration");
    EXPECT_EQ(link(" a+b&c@example.com\n", "a+b&c=d?"),
              "mailto:a+b&c@example.com?subject=a%2Bb%26c%3Dd%3F");
    EXPECT_EQ(link("x@y.z", QString::fromUtf16(u"!$'()*,-./:;@_~#%\"\U0001F600")),
              "mailto:x@y.z?subject=!$'()*,-./:;@_~%23%25%22%F0%9F%98%80");
    EXPECT_EQ(link("x@y.z", QString::fromUtf16(u" \u2028\u00A0")), "mailto:x@y.z");
    EXPECT_EQ(link("", "Objet"), "mailto:?subject=Objet");
    EXPECT_EQ(link("a b@example.com", "Objet"), "<none>"); // refused by the strict parser

    EXPECT_TRUE(bridge.openFallbackMailURL(" x@y.z ", " Devis "));
    opener.accepts = false;
    EXPECT_FALSE(bridge.openFallbackMailURL("x@y.z", ""));
    EXPECT_FALSE(bridge.openFallbackMailURL("a b@example.com", ""));
    ASSERT_EQ(opener.opened.size(), 2); // the invalid link never reaches the platform
    EXPECT_EQ(opener.opened[0].toString(QUrl::FullyEncoded), "mailto:x@y.z?subject=Devis");
}
