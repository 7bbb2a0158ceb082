#include "color_contrast.h"
#include "mail_composer_data.h"
#include "mail_template_context.h"
#include "rich_text_converter.h"
#include "rtf_font_choice.h"

#include <QFontDatabase>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace velino;

namespace {

// One character as a word processor shows it: its colour and what it is painted on.
struct ShownCharacter {
    QChar character;
    QColor text;
    QColor background;
};

// What a reader of the RTF we write shows: characters with \cf, \chcbpat and the paragraph's
// \cbpat resolved through the colour table (automatic colour black, no background white).
// Knows the subset toRtf writes; font table, colour table and field instructions are skipped.
struct RtfReading {
    QList<QColor> colors{QColor(Qt::black)};
    QStringList fonts;
    QList<ShownCharacter> shown;

    QString text() const {
        QString t;
        for (const ShownCharacter &c : shown)
            t += c.character;
        return t;
    }
};

RtfReading readRtf(const QByteArray &rtf) {
    RtfReading reading;
    static const QRegularExpression colorEntry("\\\\red(\\d+)\\\\green(\\d+)\\\\blue(\\d+);");
    const qsizetype tableStart = rtf.indexOf("{\\colortbl;");
    const QString table =
        QString::fromLatin1(rtf.mid(tableStart, rtf.indexOf('}', tableStart) - tableStart));
    for (const QRegularExpressionMatch &m : colorEntry.globalMatch(table))
        reading.colors << QColor(m.captured(1).toInt(), m.captured(2).toInt(),
                                 m.captured(3).toInt());
    static const QRegularExpression fontEntry("\\{\\\\f\\d+\\\\f[a-z]+ ([^;]*);\\}");
    for (const QRegularExpressionMatch &m : fontEntry.globalMatch(QString::fromLatin1(rtf)))
        reading.fonts << m.captured(1);

    struct State {
        int color = 0, runBackground = -1;
    };
    QList<State> groups{State{}};
    int paragraphBackground = -1;
    const auto show = [&](QChar c) {
        const State &s = groups.last();
        const int background = s.runBackground >= 0 ? s.runBackground : paragraphBackground;
        reading.shown.append({c, reading.colors.value(s.color),
                              background > 0 ? reading.colors.value(background) : Qt::white});
    };
    static const QRegularExpression word("\\\\([a-z]+)(-?\\d+)? ?|\\\\(.)");
    qsizetype i = 1; // inside the outer group
    while (i < rtf.size() - 2) {
        const char c = rtf[i];
        if (c == '{') {
            const QByteArray next = rtf.mid(i + 1, 10);
            if (next.startsWith("\\*") || next.startsWith("\\fonttbl") ||
                next.startsWith("\\colortbl")) {
                int depth = 0; // skipped destination
                do {
                    depth += rtf[i] == '{' ? 1 : rtf[i] == '}' ? -1 : 0;
                    ++i;
                } while (depth > 0);
                continue;
            }
            groups.append(groups.last());
            ++i;
        } else if (c == '}') {
            groups.removeLast();
            ++i;
        } else if (c == '\\') {
            const QRegularExpressionMatch m = word.match(QString::fromLatin1(rtf.mid(i, 24)));
            i += m.capturedLength();
            const QString name = m.captured(1);
            const int value = m.captured(2).toInt();
            if (!m.captured(3).isEmpty())
                show(m.captured(3)[0]);
            else if (name == "u") {
                show(QChar(char16_t(static_cast<qint16>(value))));
                ++i; // the '?' fallback
            } else if (name == "line" || name == "par")
                show(u'\n');
            else if (name == "tab")
                show(u'\t');
            else if (name == "pard")
                paragraphBackground = -1;
            else if (name == "cbpat")
                paragraphBackground = value;
            else if (name == "plain")
                groups.last() = State{};
            else if (name == "cf")
                groups.last().color = value;
            else if (name == "chcbpat")
                groups.last().runBackground = value;
        } else {
            if (c != '\n' && c != '\r')
                show(QChar::fromLatin1(c));
            ++i;
        }
    }
    return reading;
}

struct Sample {
    QString name;
    MailComposerData record;
    QColor buttonText = Qt::white; // black when white does not read on the brand colours
};

QList<Sample> samples() {
    QList<Sample> samples{{"default", MailComposerData::defaultRecord()}};
    for (const PresetKind kind : kAllPresetKinds) {
        MailComposerData record = MailComposerData::defaultRecord();
        record.applyPreset(kind);
        samples.append({presetId(kind), record});
    }
    MailComposerData pale = MailComposerData::defaultRecord();
    pale.accentPrimary = "#fff3a0";
    pale.accentSecondary = "#e8ffe8";
    samples.append({"pale brand colours", pale, Qt::black});
    return samples;
}

} // namespace

TEST(RtfReadability, EveryVisibleWordOfTheCopiedMailIsReadable) {
    for (const Sample &sample : samples()) {
        SCOPED_TRACE(sample.name.toStdString());
        const MailTemplateContext context(sample.record);
        const std::optional<RichTextConversion> conversion =
            QtRichTextConverter().convert(context.htmlDocument().toUtf8());
        ASSERT_TRUE(conversion && conversion->rtf);
        const RtfReading reading = readRtf(*conversion->rtf);

        for (const ShownCharacter &c : reading.shown) {
            if (c.character.isSpace())
                continue;
            ASSERT_GE(contrastRatio(c.text, c.background), 3.0)
                << "'" << QString(c.character).toStdString() << "' in "
                << c.text.name().toStdString() << " on " << c.background.name().toStdString();
        }
        const QString shownText = reading.text();
        const MailComposerData &r = sample.record;
        for (const QString &visible :
             {r.businessName, r.businessTagline, r.recipientName, r.ctaLabel, r.footerNote})
            EXPECT_TRUE(shownText.contains(visible.trimmed())) << visible.toStdString();
        // The header band and the button keep their backgrounds, so their white words can stay
        // white.
        const std::pair<QString, QColor> onColour[] = {{r.businessName, Qt::white},
                                                       {r.ctaLabel, sample.buttonText}};
        for (const auto &[words, color] : onColour) {
            const qsizetype at = shownText.indexOf(words.trimmed());
            ASSERT_GE(at, 0);
            EXPECT_EQ(reading.shown[at].text.name(), color.name()) << words.toStdString();
            EXPECT_NE(reading.shown[at].background, QColor(Qt::white)) << words.toStdString();
        }

        const QString preheader = context.preheader.trimmed();
        EXPECT_FALSE(shownText.contains(preheader));
        EXPECT_FALSE(conversion->plainText.contains(preheader));
        EXPECT_FALSE(conversion->plainText.contains(QChar::ObjectReplacementCharacter));
        EXPECT_TRUE(conversion->plainText.startsWith("Suivi client"));
        EXPECT_EQ(conversion->plainText, QString(shownText).replace(QChar::Nbsp, u' '));

        for (const QString &family : reading.fonts)
            EXPECT_TRUE(QFontDatabase::hasFamily(family)) << family.toStdString();
    }
}

TEST(RtfFontChooser, SkipsKeywordsAndMissingFamiliesAndFallsBackToTheGeneric) {
    const QString installed = QFontDatabase::families().value(0);
    ASSERT_FALSE(installed.isEmpty()) << "no font installed";
    const QString missing = QStringLiteral("Velino Absent Sans");
    ASSERT_FALSE(QFontDatabase::hasFamily(missing));
    struct Case {
        QStringList stack;
        QString family; // empty: the installed family the font matching gives
        QByteArray familyClass;
    };
    const Case cases[] = {
        {{"-apple-system", "BlinkMacSystemFont", "system-ui", "ui-sans-serif", missing, installed,
          "sans-serif"},
         installed,
         "\\fswiss"},
        {{installed}, installed, "\\fnil"},
        {{"-apple-system", "BlinkMacSystemFont", missing, "sans-serif", installed}, {}, "\\fswiss"},
        {{missing, "Serif"}, {}, "\\froman"},
        {{"ui-monospace", "monospace"}, {}, "\\fmodern"},
        {{"BlinkMacSystemFont"}, {}, "\\fswiss"},
        {{}, {}, "\\fswiss"},
    };
    RtfFontChooser chooser;
    for (const Case &c : cases) {
        const RtfFont font = chooser.choose(c.stack);
        EXPECT_EQ(font.familyClass, c.familyClass) << c.stack.join(',').toStdString();
        if (!c.family.isEmpty()) {
            EXPECT_EQ(font.family, c.family);
        }
        EXPECT_TRUE(QFontDatabase::hasFamily(font.family)) << font.family.toStdString();
    }
}
