#include "color_contrast.h"
#include "mail_composer_data.h"
#include "mail_template_context.h"
#include "rich_text_converter.h"
#include "rtf_font_choice.h"
#include "rtf_writer.h"

#include <QFontDatabase>
#include <QRegularExpression>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace velino;

namespace {

// One character as a word processor shows it: its colour and what it is painted on.
struct ShownCharacter {
    QChar character;
    QColor text, background;
};

// What a reader of the RTF we write shows: characters with \cf, \chcbpat and the paragraph's
// \cbpat resolved through the colour table (automatic colour black, no background white).
// Knows the subset toRtf writes; font table, colour table and field instructions are skipped.
QList<ShownCharacter> readRtf(const QByteArray &bytes) {
    const QString rtf = QString::fromLatin1(bytes);
    QList<ShownCharacter> shown;
    QList<QColor> colors{Qt::black};
    static const QRegularExpression colorEntry(R"(\\red(\d+)\\green(\d+)\\blue(\d+);)");
    const qsizetype table = rtf.indexOf("{\\colortbl;");
    for (const auto &m : colorEntry.globalMatch(rtf.mid(table, rtf.indexOf('}', table) - table)))
        colors << QColor(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());

    struct State {
        int color = 0, runBackground = -1;
    };
    QList<State> groups{State{}};
    int paragraphBackground = -1, skippedDepth = 0;
    bool fallbackNext = false; // the '?' after \uN
    const auto show = [&](QChar c) {
        const State &s = groups.last();
        const int background = s.runBackground >= 0 ? s.runBackground : paragraphBackground;
        shown.append(
            {c, colors.value(s.color), background > 0 ? colors.value(background) : Qt::white});
    };
    // Control word, control symbol, start of a skipped destination, group brace, text.
    static const QRegularExpression token(
        R"(\\([a-z]+)(-?\d+)? ?|\\(.)|(\{\\\*|\{\\fonttbl|\{\\colortbl)|([{}])|([^\r\n]))");
    for (const QRegularExpressionMatch &m : token.globalMatch(rtf)) {
        const QString name = m.captured(1), brace = m.captured(5);
        const int value = m.captured(2).toInt();
        if (skippedDepth > 0 || m.hasCaptured(4)) {
            skippedDepth += m.hasCaptured(4) || brace == "{" ? 1 : brace == "}" ? -1 : 0;
        } else if (brace == "{") {
            groups.append(groups.last());
        } else if (brace == "}") {
            groups.removeLast();
        } else if (m.hasCaptured(3) || m.hasCaptured(6)) {
            if (!std::exchange(fallbackNext, false))
                show(m.captured(m.hasCaptured(3) ? 3 : 6)[0]);
        } else if (name == "u") {
            show(QChar(char16_t(static_cast<qint16>(value))));
            fallbackNext = true;
        } else if (name == "line" || name == "par" || name == "tab") {
            show(name == "tab" ? u'\t' : u'\n');
        } else if (name == "pard" || name == "cbpat") {
            paragraphBackground = name == "pard" ? -1 : value;
        } else if (name == "plain") {
            groups.last() = State{};
        } else if (name == "cf") {
            groups.last().color = value;
        } else if (name == "chcbpat") {
            groups.last().runBackground = value;
        }
    }
    return shown;
}

} // namespace

// The copied e-mail as a word processor shows it: the text of the rendered document, every
// character readable on its background, the button's link followed.
TEST(RtfReadability, TheCopiedMailShowsItsTextReadablyAndItsLink) {
    MailComposerData pale = MailComposerData::defaultRecord();
    pale.accentPrimary = "#fff3a0";
    pale.accentSecondary = "#e8ffe8";
    pale.mailBody =
        QString::fromUtf16(u"R\u00E9paration \\ {x} \u00AB\u00A0ok\u00A0\u00BB \U0001F600");
    pale.ctaURL = "https://x.example/?q=\"1\"&r={2}";
    const QString mailto = "mailto:contact@korvel.example";
    // Name, record, button text colour (black when white does not read on the brand colours)
    // and the button's link as the field writes it.
    QList<std::tuple<QString, MailComposerData, QColor, QString>> samples{
        {"default", MailComposerData::defaultRecord(), Qt::white, mailto},
        {"pale", pale, Qt::black, "https://x.example/?q=%221%22&r=\\{2\\}"}};
    for (const PresetKind kind : kAllPresetKinds) {
        samples.append({presetId(kind), MailComposerData::defaultRecord(), Qt::white, mailto});
        std::get<1>(samples.last()).applyPreset(kind);
    }
    for (const auto &[name, r, buttonText, link] : samples) {
        SCOPED_TRACE(name.toStdString());
        const MailTemplateContext context(r);
        const auto conversion = QtRichTextConverter().convert(context.htmlDocument().toUtf8());
        ASSERT_TRUE(conversion && conversion->rtf);
        const QList<ShownCharacter> shown = readRtf(*conversion->rtf);
        QString text;
        for (const ShownCharacter &c : shown) {
            text += c.character;
            ASSERT_TRUE(c.character.isSpace() || contrastRatio(c.text, c.background) >= 3.0)
                << "'" << QString(c.character).toStdString() << "' in "
                << c.text.name().toStdString() << " on " << c.background.name().toStdString();
        }
        // The plain characters have their no-break spaces as spaces.
        EXPECT_EQ(QString(text).replace(QChar::Nbsp, u' ').toStdString(),
                  conversion->plainText.toStdString());
        EXPECT_FALSE(text.contains(context.preheader.trimmed())); // hidden, left out
        EXPECT_TRUE(conversion->rtf->contains("{\\field{\\*\\fldinst HYPERLINK \"" + link.toUtf8()))
            << conversion->rtf->toStdString();
        // The header band and the button keep their backgrounds, so their words keep their colour.
        const std::pair<QString, QColor> onColour[] = {{r.businessName, Qt::white},
                                                       {r.ctaLabel, buttonText}};
        for (const auto &[words, color] : onColour) {
            const qsizetype at = text.indexOf(words.trimmed());
            ASSERT_GE(at, 0);
            EXPECT_EQ(shown[at].text.name(), color.name()) << words.toStdString();
            EXPECT_NE(shown[at].background, QColor(Qt::white)) << words.toStdString();
        }
    }
}

TEST(RtfFontChooser, SkipsKeywordsAndMissingFamiliesAndFallsBackToTheGeneric) {
    const QString installed = QFontDatabase::families().value(0), missing = "Velino Absent Sans";
    ASSERT_FALSE(installed.isEmpty()) << "no font installed";
    const QStringList systemStack = {
        "-apple-system", "BlinkMacSystemFont", "system-ui", "ui-sans-serif", missing,
        installed,       "sans-serif"};
    // An empty family: whichever installed family the font matching gives.
    const std::tuple<QStringList, QString, QByteArray> cases[] = {
        {systemStack, installed, "\\fswiss"},
        {{missing, "Serif"}, {}, "\\froman"},
        {{"ui-monospace", "monospace"}, {}, "\\fmodern"},
        {{"BlinkMacSystemFont"}, {}, "\\fswiss"}};
    RtfFontChooser chooser;
    for (const auto &[stack, family, familyClass] : cases) {
        const RtfFont font = chooser.choose(stack);
        EXPECT_EQ(font.familyClass, familyClass) << stack.join(',').toStdString();
        EXPECT_EQ(font.family, family.isEmpty() ? font.family : family);
        EXPECT_TRUE(QFontDatabase::hasFamily(font.family)) << font.family.toStdString();
    }
}

// Every non-ASCII unit as a signed 16-bit \uN; plain text right after one starts a word of its
// own.
TEST(RtfWriter, WritesEveryNonAsciiUnitAsSigned16Bit) {
    QTextDocument document;
    document.setHtml(QString::fromUtf16(u"<p>\u00E9t\u00E9 \u4E2D\uFF01 d\u2019\U0001F600x</p>"));
    const QByteArray rtf = toRtf(document);
    EXPECT_TRUE(rtf.contains("\\u233?{}t\\u233? \\u20013?\\u-255? d\\u8217?\\u-10179?\\u-8704?{}x"))
        << rtf.toStdString();
    EXPECT_TRUE(std::all_of(rtf.begin(), rtf.end(), [](char c) { return c > 0; }));
}

TEST(QtRichTextConverter, RefusesWhatItCannotRead) {
    QtRichTextConverter converter;
    for (const char *unreadable : {"", " \n\t", "<p>caf\xE9</p>"}) // the last is Latin-1
        EXPECT_FALSE(converter.convert(unreadable).has_value()) << unreadable;
    EXPECT_EQ(converter.convert("<p>caf\xC3\xA9</p>").value_or(RichTextConversion{}).plainText,
              QString::fromUtf16(u"caf\u00E9"));
}
