#include "mail_draft_script.h"

#include <QByteArray>

namespace velino {
namespace {

// The script is cut at its four insertion points; each base64 value goes between two of
// these parts. From the first line to the opening quote of the subject:
constexpr QStringView beforeSubject =
    u"use framework \"Foundation\"\n"
    u"on decodeBase64(theValue)\n"
    u"    set decodedData to current application's NSData's alloc()'s "
    u"initWithBase64EncodedString:theValue options:0\n"
    u"    if decodedData is missing value then return \"\"\n"
    u"    set decodedString to current application's NSString's alloc()'s "
    u"initWithData:decodedData encoding:(current application's NSUTF8StringEncoding)\n"
    u"    return decodedString as text\n"
    u"end decodeBase64\n"
    u"\n"
    u"set theSubject to decodeBase64(\"";
constexpr QStringView beforeRecipient = u"\")\nset theRecipient to decodeBase64(\"";
constexpr QStringView beforeSender = u"\")\nset theSender to decodeBase64(\"";
constexpr QStringView beforeHtml = u"\")\nset theHTML to decodeBase64(\"";
// From the closing quote of the HTML value to the last line, without a final line feed.
constexpr QStringView afterHtml =
    u"\")\n"
    u"\n"
    u"tell application \"Mail\"\n"
    u"    activate\n"
    u"    delay 0.15\n"
    u"    set newMessage to make new outgoing message with properties "
    u"{visible:true, subject:theSubject}\n"
    u"    tell newMessage\n"
    u"        make new to recipient at end of to recipients with properties "
    u"{address:theRecipient}\n"
    u"        if theSender is not \"\" then set sender to theSender\n"
    u"        set html content to theHTML\n"
    u"    end tell\n"
    u"end tell";

} // namespace

QString base64Utf8(const QString &value) {
    return QString::fromLatin1(value.toUtf8().toBase64(QByteArray::Base64Encoding));
}

QString mailDraftScript(const QString &subject, const QString &recipient, const QString &sender,
                        const QString &html) {
    const QString encodedSubject = base64Utf8(subject);
    const QString encodedRecipient = base64Utf8(recipient);
    const QString encodedSender = base64Utf8(sender);
    const QString encodedHtml = base64Utf8(html);

    QString script;
    script.reserve(beforeSubject.size() + beforeRecipient.size() + beforeSender.size() +
                   beforeHtml.size() + afterHtml.size() + encodedSubject.size() +
                   encodedRecipient.size() + encodedSender.size() + encodedHtml.size());
    script += beforeSubject;
    script += encodedSubject;
    script += beforeRecipient;
    script += encodedRecipient;
    script += beforeSender;
    script += encodedSender;
    script += beforeHtml;
    script += encodedHtml;
    script += afterHtml;
    return script;
}

} // namespace velino
