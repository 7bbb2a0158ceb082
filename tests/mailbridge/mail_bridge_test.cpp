#include "fakes.h"
#include "mail_draft_script.h"
#include "test_records.h"

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::test;

// Each value goes in base64 into its own quotes, in the order subject, recipient, sender,
// HTML, so that no value can end a quote or a statement of the script.
TEST(MailDraftScript, FixedTextWithBase64ValuesOnly) {
    QString expected = mailDraftScript({}, {}, {}, {});
    for (const char *part :
         {"set theSubject to decodeBase64(\"\")\nset theRecipient to decodeBase64("
          "\"\")\nset theSender to decodeBase64(\"\")\nset theHTML to decodeBase64(\"\")\n",
          "subject:theSubject}", "{address:theRecipient}", "set sender to theSender",
          "set html content to theHTML"})
        EXPECT_TRUE(expected.contains(part)) << part;
    const QString values[] = {QString::fromUtf16(u"Devis \"x\" \\ end tell\n\u00E9\U0001F600"),
                              "o'neil@example.com", "\"a\"\r\n@b", "<p class=\"c\">\\</p>"};
    for (const QString &value : values)
        expected.replace(expected.indexOf("decodeBase64(\"\")") + 14, 0, value.toUtf8().toBase64());
    EXPECT_EQ(mailDraftScript(values[0], values[1], values[2], values[3]), expected);
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
        {"<x>@example.com", "", "mailto:%3Cx%3E@example.com"}};
    for (const auto &[recipient, subject, link] : cases)
        EXPECT_EQ(MailBridge::fallbackMailURL(recipient, subject)
                      .value_or(QUrl())
                      .toString(QUrl::FullyEncoded),
                  link);

    // Even a tolerant parser refuses an unclosed bracket in what it reads as a host name; the
    // platform never sees it. The store's mail draft tests open the valid links.
    FakePlatform linux(MailPlatform::Linux);
    EXPECT_FALSE(linux.bridge.openFallbackMailURL("//[x", ""));
    EXPECT_TRUE(linux.opened.isEmpty());
}
