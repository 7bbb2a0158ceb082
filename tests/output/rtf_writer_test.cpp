#include "rich_text_converter.h"
#include "rtf_writer.h"
#include "test_records.h"
#include "visible_text.h"

#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

std::string rtfOf(const QString &html) {
    QTextDocument document;
    document.setHtml(html);
    return toRtf(document).toStdString();
}

void expectParts(const std::string &rtf, std::initializer_list<std::string> parts) {
    for (const std::string &part : parts)
        EXPECT_NE(rtf.find(part), std::string::npos) << part << " in " << rtf;
}

// The text unrtf reads from the RTF. Its stock text output drops every \uN character, so it
// runs with a copy of that configuration that prints them as "&#N;", decoded here (surrogate
// pairs included).
QString unrtfText(const QByteArray &rtf) {
    QTemporaryDir dir;
    QFile stock("/usr/share/unrtf/text.conf"), config(dir.filePath("utf.conf")),
        input(dir.filePath("mail.rtf"));
    EXPECT_TRUE(stock.open(QIODevice::ReadOnly) && config.open(QIODevice::WriteOnly) &&
                config.write(stock.readAll() + "\nunisymbol_print\n\t&#%;\n") > 0 &&
                input.open(QIODevice::WriteOnly) && input.write(rtf) == rtf.size() &&
                config.flush() && input.flush())
        << "unrtf configuration or input not writable";
    QProcess unrtf;
    unrtf.start("unrtf", {"--quiet", "-P", dir.path(), "-t", "utf", input.fileName()});
    EXPECT_TRUE(unrtf.waitForFinished(20000)) << "unrtf did not run (package unrtf)";
    EXPECT_EQ(unrtf.exitCode(), 0) << unrtf.readAllStandardError().toStdString();
    QString text = QString::fromUtf8(unrtf.readAllStandardOutput());
    text = text.mid(text.indexOf("-----------------\n") + 18); // unrtf's start of the body
    static const QRegularExpression entity("&#(\\d+);");
    QString decoded; // entity by entity: a lone surrogate is no text a pattern can search
    qsizetype last = 0;
    for (const QRegularExpressionMatch &m : entity.globalMatch(text)) {
        decoded +=
            text.mid(last, m.capturedStart() - last) + QChar(char16_t(m.captured(1).toUInt()));
        last = m.capturedEnd();
    }
    decoded += text.mid(last);
    return decoded.replace(QChar::Nbsp, u' ');
}

} // namespace

TEST(RtfWriter, WritesFontsSizesStylesAndColours) {
    const QString family = QFontDatabase::families().value(0);
    ASSERT_FALSE(family.isEmpty()) << "no font installed";
    const std::string rtf =
        rtfOf(QStringLiteral("<p style=\"font-family:'%1',serif; font-size:15pt\"><b>Gras</b> "
                             "<i>ital</i> <u>soul</u> <span style=\"color:#a0522d; "
                             "font-size:20px\">brun</span></p>")
                  .arg(family));
    EXPECT_TRUE(rtf.starts_with("{\\rtf1\\ansi") && rtf.ends_with("}\n"));
    expectParts(rtf, {"{\\f1\\froman " + family.toStdString() + ";}",
                      "{\\colortbl;\\red160\\green82\\blue45;}", "{\\f1\\fs30\\b Gras}",
                      "{\\f1\\fs30\\i ital}", "{\\f1\\fs30\\ul soul}",
                      "{\\f1\\fs30\\cf1 brun}"}); // 20px = 15pt
}

// Plain text right after a \uN? starts a word of its own.
TEST(RtfWriter, EscapesAndWritesEveryNonAsciiUnitAsSigned16Bit) {
    const std::string rtf = rtfOf(
        QString::fromUtf16(u"<p>a\\b{c} \u00E9\u20AC\u4E2D\uFF01 \U0001F600</p><p>&nbsp;x</p>"));
    expectParts(
        rtf, {"a\\\\b\\{c\\} \\u233?\\u8364?\\u20013?\\u-255? \\u-10179?\\u-8704?", "\\u160?{}x"});
    expectParts(rtfOf(QString::fromUtf16(u"<p>\u00E9t\u00E9 d\u2019\U0001F600x</p>")),
                {"\\u233?{}t\\u233? d\\u8217?\\u-10179?\\u-8704?{}x"});
    EXPECT_TRUE(std::all_of(rtf.begin(), rtf.end(), [](char c) { return c > 0; }));
}

TEST(RtfWriter, ParagraphsLineBreaksCellsAndLinks) {
    const QString family = QFontDatabase::families().value(0);
    QTextDocument document;
    document.setDefaultFont(QFont(family, 11));
    document.setHtml("<p align=\"center\">un<br>deux</p><table><tr><td>A</td><td>B</td></tr>"
                     "</table><p><a href='https://x.example/?q=\"1\"&r={2}'>le lien</a> fin</p>");
    const std::string rtf = toRtf(document).toStdString();
    expectParts(rtf, {"{\\fonttbl{\\f0\\fnil " + family.toStdString() + ";}}",
                      "\\pard\\plain\\qc {", "un\\line deux}",
                      // one paragraph per cell
                      "{\\f0\\fs22 A}\\par\n\\pard\\plain\\ql {\\f0\\fs22 B}\\par",
                      "{\\field{\\*\\fldinst HYPERLINK \"https://x.example/?q=%221%22&r=\\{2\\}\"}"
                      "{\\fldrslt {",
                      " le lien}}}{"}); // the field closes after the link
    // A \par between blocks, none after the last.
    EXPECT_EQ(QString::fromStdString(rtf).count("\\par\n"), document.blockCount() - 1);
    EXPECT_EQ(rtf.find("\\par\n}"), std::string::npos);
}

TEST(RtfWriter, UnrtfReadsTheSameTextAsTheDocument) {
    const QString samples[] = {
        QString::fromUtf8(test::readTestData("default_email.html")),
        QString::fromUtf8(test::readTestData("hostile_email.html")),
        QString::fromUtf16(u"<h1>R\u00E9paration \u00E0 l'\u00E9cran</h1><p>Ligne 1<br>Ligne "
                           u"2 \u2013 \u00AB\u00A0ok\u00A0\u00BB \\ {x} \U0001F600</p>"
                           u"<table><tr><td>\u00C9tat</td><td>Pr\u00EAt</td></tr></table>"
                           u"<p><a href=\"https://k.example\">Voir l\u2019atelier</a></p>"),
    };
    for (const QString &html : samples) {
        QTextDocument document;
        document.setHtml(html);
        EXPECT_EQ(unrtfText(toRtf(document)), visiblePlainText(document));
    }
}

// What the converter makes of an e-mail is checked by the readability test.
TEST(QtRichTextConverter, RefusesWhatItCannotRead) {
    QtRichTextConverter converter;
    for (const char *unreadable : {"", " \n\t", "<p>caf\xE9</p>"}) // the last is Latin-1
        EXPECT_FALSE(converter.convert(unreadable).has_value()) << unreadable;
    EXPECT_EQ(converter.convert("<p>caf\xC3\xA9</p>").value_or(RichTextConversion{}).plainText,
              QString::fromUtf16(u"caf\u00E9"));
}
