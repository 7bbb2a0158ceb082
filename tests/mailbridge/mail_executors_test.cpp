#include "fakes.h"
#include "identifiers.h"
#include "mail_draft_script.h"
#include "test_records.h"
#include "thunderbird_executor.h"

#include <QDir>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace velino;
using namespace velino::test;

namespace {

// How Thunderbird's compose window reads its -compose argument: commas outside quotes split
// the pairs; a quote right after "=" opens a quoted value, closed by the same quote before a
// comma or the end; a value between single quotes is literal, any other is percent-decoded.
QMap<QString, QString> asThunderbirdReadsIt(const QString &argument) {
    QString data;
    QChar quote, previous;
    for (qsizetype i = 0; i < argument.size(); previous = argument[i++]) {
        const QChar c = argument[i], next = i + 1 < argument.size() ? argument[i + 1] : QChar();
        if (!quote.isNull() && c == quote && (next == u',' || next.isNull()))
            quote = QChar();
        else if ((c == u'\'' || c == u'"') && previous == u'=' && quote.isNull())
            quote = c;
        data += (c == u',' && quote.isNull()) ? QChar(1) : c;
    }
    QMap<QString, QString> values;
    for (const QString &pair : data.split(QChar(1))) {
        const QString value = pair.section(u'=', 1);
        const bool literal = value.size() > 1 && value.startsWith(u'\'') && value.endsWith(u'\'');
        values[pair.section(u'=', 0, 0)] =
            literal ? value.mid(1, value.size() - 2)
                    : QString::fromUtf8(QByteArray::fromPercentEncoding(value.toLatin1()));
    }
    return values;
}

// The bridge of one platform over recording fakes; compose() gives the error, code 0 if none.
template <MailPlatform platform> struct Executor : ::testing::Test, FakePlatform {
    Executor() : FakePlatform(platform) {}
    VelinoError compose(const MailComposerData &data = MailComposerData::defaultRecord()) {
        return bridge.compose(MailTemplateContext(data)).value_or(VelinoError{});
    }
    QMap<QString, QString> composed() {
        const QStringList &arguments = launcher.calls.last().arguments;
        EXPECT_EQ(arguments.value(arguments.size() - 2), "-compose");
        return asThunderbirdReadsIt(arguments.last());
    }
};
using Thunderbird = Executor<MailPlatform::Linux>;
using AppleMail = Executor<MailPlatform::MacOS>;

} // namespace

TEST_F(Thunderbird, HostileValuesArriveIntactWhereverThunderbirdIsInstalled) {
    launcher.onPath["thunderbird"] = "/usr/bin/thunderbird";
    MailComposerData data = defaultWith(u"recipientEmail", "o'neil,\"x\"=@example.com");
    data.senderEmail = "='a',b";
    data.subject = QString::fromUtf16(u"Devis, \"x\" = 50% l'\u00E9cran',\nl2 \U0001F600");
    EXPECT_EQ(compose(data).code, 0);
    ASSERT_EQ(launcher.calls.size(), 1); // started once, no separate launch
    EXPECT_EQ(launcher.calls[0].program, "/usr/bin/thunderbird");
    EXPECT_FALSE(launcher.calls[0].arguments.last().contains(QRegularExpression("['\" ]")));
    const QString path = files.folder + "/velino-brouillon-" + uuidText(newId()) + ".html";
    EXPECT_EQ(composed(), (QMap<QString, QString>{{"to", data.recipientEmail},
                                                  {"from", data.senderEmail},
                                                  {"subject", data.subject},
                                                  {"format", "html"},
                                                  {"message", path}}));
    EXPECT_TRUE(files.written.value(path).startsWith("<!DOCTYPE html>"));
    EXPECT_EQ(asThunderbirdReadsIt(thunderbirdComposeArgument("", "", "", "/a, 'b'"))["message"],
              "/a, 'b'");

    // A Snap reads the private folder too; the Flatpak gets the file in its own folder.
    launcher.onPath["thunderbird"] = "/snap/bin/thunderbird";
    EXPECT_EQ(compose().code, 0);
    EXPECT_EQ(composed()["message"], path);
    launcher.onPath = {{"flatpak", "/usr/bin/flatpak"}};
    launcher.onRun = [](const Call &call) {
        return exited(call.arguments == QStringList{"info", "org.mozilla.Thunderbird"} ? 0 : 1);
    };
    EXPECT_EQ(compose().code, 0);
    EXPECT_EQ(launcher.calls.last().arguments.mid(0, 2),
              (QStringList{"run", "org.mozilla.Thunderbird"}));
    EXPECT_TRUE(composed()["message"].startsWith(
        QDir::homePath() + "/.var/app/org.mozilla.Thunderbird/cache/velino/velino-brouillon-"));
}

TEST_F(Thunderbird, FailuresUseTheBridgeCodes) {
    EXPECT_EQ(compose().code, 3);
    launcher.onPath["thunderbird"] = "/usr/bin/thunderbird";
    files.writes = false;
    EXPECT_EQ(compose().code, 4);
    files.writes = true;
    launcher.starts = false;
    EXPECT_EQ(compose().code, 5);
    files.written.clear();
    launcher.calls.clear();
    // Six bytes each once encoded.
    EXPECT_EQ(compose(defaultWith(u"subject", QString(40000, u'\u00E9'))).description,
              "L'objet ou les adresses sont trop longs pour Thunderbird.");
    EXPECT_TRUE(files.written.isEmpty() && launcher.calls.isEmpty());
}

TEST_F(AppleMail, FindsLaunchesAndRunsThroughSystemTools) {
    const MailTemplateContext context(MailComposerData::defaultRecord());
    launcher.onRun = [](const Call &call) {
        if (call.arguments.startsWith("-l"))
            return exited(0, "/System/Applications/Mail.app\n");
        return exited(1, {}, "<stdin>:1:5: execution error: Refus\xC3\xA9. (-1743)\n");
    };
    const VelinoError error = bridge.compose(context).value_or(VelinoError{});
    EXPECT_EQ(error.description + " " + QString::number(error.code),
              QString::fromUtf16(u"Refus\u00E9. -1743"));
    QStringList calls;
    for (const Call &call : launcher.calls)
        calls << (call.detached ? "detached " : "") + call.program + " " +
                     call.arguments.mid(0, 3).join(u' ');
    ASSERT_EQ(calls,
              (QStringList{"/usr/bin/osascript -l JavaScript -e",
                           "detached /usr/bin/open -b com.apple.mail", "/usr/bin/osascript -"}));
    EXPECT_EQ(launcher.calls[2].input,
              mailDraftScript(context.subject, "client@example.com", "contact@korvel.example",
                              context.htmlDocument())
                  .toUtf8());

    launcher.onRun = [](const Call &call) {
        return call.arguments.size() > 1 ? exited(0, "/M.app") : exited(1);
    };
    EXPECT_EQ(compose().code, 5); // no message, no number
    launcher.onRun = [](const Call &) { return exited(0, "\n"); };
    EXPECT_EQ(compose().code, 3); // no application has the identifier
}
