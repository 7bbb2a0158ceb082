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

TEST(MailBridge, FallbackLinkEncodesTheSubjectButNotTheAddress) {
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
    // The parser escapes what a URL cannot hold.
    EXPECT_EQ(link("a b@example.com", "Objet"), "mailto:a%20b@example.com?subject=Objet");
    EXPECT_EQ(link("<x>@example.com", ""), "mailto:%3Cx%3E@example.com");

    FakeLauncher launcher;
    FakeFiles files;
    FakeIds ids;
    FakeOpener opener;
    MailBridge bridge(makeMailAppExecutor(MailPlatform::Linux, launcher, files, ids), opener);
    EXPECT_TRUE(bridge.openFallbackMailURL(" x@y.z ", " Devis "));
    opener.accepts = false;
    EXPECT_FALSE(bridge.openFallbackMailURL("x@y.z", ""));
    // Even a tolerant parser refuses an unclosed bracket in what it reads as a host name.
    EXPECT_FALSE(bridge.openFallbackMailURL("//[x", ""));
    ASSERT_EQ(opener.opened.size(), 2); // the invalid link never reaches the platform
    EXPECT_EQ(opener.opened[0].toString(QUrl::FullyEncoded), "mailto:x@y.z?subject=Devis");
}

// macOS keeps the texts naming Apple Mail and the Mac; elsewhere each text is the same with
// Thunderbird and "cet ordinateur" instead.
TEST(MailAppTexts, LinuxTextsNameThunderbirdAndChangeNothingElse) {
    const MailAppTexts &mac = mailAppTexts(MailPlatform::MacOS);
    const MailAppTexts &other = mailAppTexts(MailPlatform::Linux);
    const auto onLinux = [](QString text) {
        return text.replace("Apple Mail", "Thunderbird")
            .replace("au Mail ", "au Thunderbird ")
            .replace("ce Mac", "cet ordinateur");
    };
    const std::pair<QString, QString> pairs[] = {
        {mac.draftOpened, other.draftOpened},
        {mac.mailCopied, other.mailCopied},
        {mac.fallbackOpened, other.fallbackOpened},
        {mac.applicationMissing, other.applicationMissing},
        {mac.bridgeUnavailable, other.bridgeUnavailable},
        {mac.connectionStatus, other.connectionStatus},
        {mac.connectionHint, other.connectionHint},
        {mac.sectionTitle, other.sectionTitle},
        {mac.sectionSubtitle, other.sectionSubtitle},
    };
    for (const auto &[onMac, expected] : pairs) {
        EXPECT_EQ(onLinux(onMac), expected);
        EXPECT_FALSE(expected.contains("Apple") || expected.contains("Mac"))
            << expected.toStdString();
    }
    EXPECT_EQ(mac.draftOpened, "Brouillon ouvert dans Apple Mail.");
    EXPECT_EQ(mac.applicationMissing, "Apple Mail est introuvable sur ce Mac.");
    EXPECT_EQ(std::pair(mac.summaryTitle, mac.summaryValue),
              std::pair(QString("Apple"), QString("Mail.app")));
    EXPECT_EQ(std::pair(other.summaryTitle, other.summaryValue),
              std::pair(QString("Mozilla"), QString("Thunderbird")));
    // Without the macOS privacy settings, which do not exist elsewhere.
    EXPECT_TRUE(onLinux(mac.automationRefused).startsWith(other.automationRefused.chopped(1)));
    EXPECT_EQ(other.automationRefused,
              "Thunderbird n'a pas pu creer le brouillon automatiquement.");

    // The bridge reports with the texts it is given.
    FakeOpener opener;
    MailBridge bridge(nullptr, opener, mac);
    MailComposerData data = MailComposerData::defaultRecord();
    data.recipientEmail = "client@example.com";
    data.senderEmail = "atelier@example.com";
    EXPECT_EQ(bridge.compose(MailTemplateContext(data))->description, mac.applicationMissing);
}
