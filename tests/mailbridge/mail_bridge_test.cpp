#include "fakes.h"
#include "mail_draft_script.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::test;

// The fixed text is the same for any values; each value goes in base64 into its own quotes,
// in the order subject, recipient, sender, HTML.
TEST(MailDraftScript, FixedTextWithBase64ValuesOnly) {
    const QString empty = mailDraftScript({}, {}, {}, {});
    EXPECT_EQ(empty.size(), 933);
    EXPECT_EQ(empty.count(u'\n'), 22); // 23 lines, no final line feed
    for (const char *part :
         {"set theSubject to decodeBase64(\"\")\nset theRecipient to decodeBase64(\"\")\n"
          "set theSender to decodeBase64(\"\")\nset theHTML to decodeBase64(\"\")\n",
          "tell application \"Mail\"", "subject:theSubject}", "{address:theRecipient}",
          "set sender to theSender", "set html content to theHTML"})
        EXPECT_TRUE(empty.contains(part)) << part;
    const QString values[] = {QString::fromUtf16(u"Devis \"x\" \\ end tell\n\u00E9\U0001F600"),
                              "o'neil@example.com", "\"a\"\r\n@b", "<p class=\"c\">\\</p>"};
    QString expected = empty;
    for (const QString &value : values)
        expected.replace(expected.indexOf("(\"\")") + 2, 0, value.toUtf8().toBase64());
    EXPECT_EQ(mailDraftScript(values[0], values[1], values[2], values[3]), expected);
    EXPECT_EQ(base64Utf8(QString::fromUtf16(u"\u00FF\u00FF\u00FEa")), "w7/Dv8O+YQ==");
    EXPECT_FALSE(base64Utf8(QString(300, u'x')).contains(u'\n'));
}

TEST(MailBridge, FallbackLinkEncodesTheSubjectButNotTheAddress) {
    const auto q = [](const char16_t *text) { return QString::fromUtf16(text); };
    const std::array<QString, 3> cases[] = {
        {"client@example.com", q(u"Devis & r\u00E9paration"),
         "mailto:client@example.com?subject=Devis%20%26%20r%C3%A9paration"},
        {" a+b&c@example.com\n", "a+b&c=d?", "mailto:a+b&c@example.com?subject=a%2Bb%26c%3Dd%3F"},
        {"x@y.z", q(u"!$'()*,-./:;@_~#%\"\U0001F600"),
         "mailto:x@y.z?subject=!$'()*,-./:;@_~%23%25%22%F0%9F%98%80"},
        {"x@y.z", q(u" \u2028\u00A0"), "mailto:x@y.z"},
        {"", "Objet", "mailto:?subject=Objet"},
        // The parser escapes what a URL cannot hold.
        {"a b@example.com", "Objet", "mailto:a%20b@example.com?subject=Objet"},
        {"<x>@example.com", "", "mailto:%3Cx%3E@example.com"},
    };
    for (const auto &[recipient, subject, link] : cases)
        EXPECT_EQ(MailBridge::fallbackMailURL(recipient, subject)
                      .value_or(QUrl())
                      .toString(QUrl::FullyEncoded),
                  link);

    FakePlatform linux(MailPlatform::Linux);
    EXPECT_TRUE(linux.bridge.openFallbackMailURL(" x@y.z ", " Devis "));
    linux.opener.accepts = false;
    EXPECT_FALSE(linux.bridge.openFallbackMailURL("x@y.z", ""));
    // Even a tolerant parser refuses an unclosed bracket in what it reads as a host name.
    EXPECT_FALSE(linux.bridge.openFallbackMailURL("//[x", ""));
    ASSERT_EQ(linux.opener.opened.size(), 2); // the invalid link never reaches the platform
    EXPECT_EQ(linux.opener.opened[0].toString(QUrl::FullyEncoded), "mailto:x@y.z?subject=Devis");
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
    for (QString MailAppTexts::*text :
         {&MailAppTexts::draftOpened, &MailAppTexts::mailCopied, &MailAppTexts::fallbackOpened,
          &MailAppTexts::applicationMissing, &MailAppTexts::bridgeUnavailable,
          &MailAppTexts::connectionStatus, &MailAppTexts::connectionHint,
          &MailAppTexts::sectionTitle, &MailAppTexts::sectionSubtitle}) {
        EXPECT_EQ(onLinux(mac.*text), other.*text);
        EXPECT_FALSE((other.*text).contains("Apple") || (other.*text).contains("Mac"));
    }
    EXPECT_EQ(other.summaryTitle + " " + other.summaryValue, "Mozilla Thunderbird");
    // Without the macOS privacy settings, which do not exist elsewhere.
    EXPECT_TRUE(onLinux(mac.automationRefused).startsWith(other.automationRefused.chopped(1)));
    EXPECT_EQ(other.automationRefused,
              "Thunderbird n'a pas pu creer le brouillon automatiquement.");
    // The bridge reports with the texts it is given.
    FakeOpener opener;
    MailBridge bridge(nullptr, opener, mac);
    EXPECT_EQ(bridge.compose(MailTemplateContext(MailComposerData::defaultRecord()))->description,
              mac.applicationMissing);
}
