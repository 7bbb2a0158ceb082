// The Unicode rules behind every text test of the record, one table per rule, with the
// texts where Qt's own Unicode services gave another answer.

#include "preset_names.h"
#include "sanitizers.h"
#include "suggested_file_name.h"
#include "sync_client.h"
#include "text.h"

#include <gtest/gtest.h>

using namespace velino;

namespace {

using Cases = std::initializer_list<std::pair<const char16_t *, const char16_t *>>;

const auto q = [](const char16_t *text) { return QString::fromUtf16(text); };

void expectMapped(const std::function<QString(const QString &)> &map, Cases cases) {
    for (const auto &[input, expected] : cases)
        EXPECT_EQ(map(q(input)), q(expected)) << q(input).toStdString();
}

} // namespace

TEST(Trim, RemovesWhiteSpaceAtBothEndsOnly) {
    const QString edges = q(u"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u200A\u2028\u2029\u202F"
                            u"\u205F\u3000");
    EXPECT_EQ(text::trimmed(edges + "a \u00A0b" + edges), q(u"a \u00A0b"));
    EXPECT_TRUE(text::isBlank(edges));
    // Zero-width space and the Mongolian vowel separator are format characters, not spaces.
    EXPECT_EQ(text::trimmed(q(u"\u200Bx\u180E")), q(u"\u200Bx\u180E"));
}

TEST(GraphemeClusters, CountExtendedClustersOfUnicode15) {
    const std::pair<const char16_t *, qsizetype> cases[] = {
        {u"\U0001F600\U0001F1EB\U0001F1F7abcdefghi", 11},           // a flag right after an emoji
        {u"e\u0301te\u0301", 3},                                    // combining accents
        {u"\U0001F468\u200D\U0001F469\u200D\U0001F467", 1},         // joined family
        {u"\U0001F1EB\U0001F1F7\U0001F1EB\U0001F1F7\U0001F1EB", 3}, // flags pair up
        {u"\u1100\u1161\u11A8\u1100", 2},                           // Hangul jamo L V T, then L
        {u"1\uFE0F\u20E3#", 2},                                     // keycap
        {u"\U0001F44D\U0001F3FD!", 2},                              // skin tone modifier
        {u"a\r\nb\n\rc", 6},                                        // CR LF only is one cluster
        {u"\u0E01\u0E33\u0E01", 2},                                 // Thai spacing mark joins
    };
    for (const auto &[text, count] : cases)
        EXPECT_EQ(text::characterCount(q(text)), count) << q(text).toStdString();
}

TEST(CaseMapping, UsesFullContextSensitiveMappings) {
    expectMapped(
        text::lowerCased,
        {{u"\u039F\u0394\u039F\u03A3", u"\u03BF\u03B4\u03BF\u03C2"}, // final sigma
         {u"\u039F\u0394\u039F\u03A3 \u03A3\u039F", u"\u03BF\u03B4\u03BF\u03C2 \u03C3\u03BF"},
         {u"\u0130", u"i\u0307"}, // dotted capital I keeps its dot
         {u"RDV Lundi", u"rdv lundi"}});
    expectMapped(text::upperCased,
                 {{u"stra\u00DFe", u"STRASSE"}, {u"\uFB01n", u"FIN"}, {u"\u03AC", u"\u0386"}});
    EXPECT_EQ(suggestedFileName(q(u"\u039F\u0394\u039F\u03A3")),
              q(u"\u03BF\u03B4\u03BF\u03C2.html"));
}

TEST(WhiteSpace, PresetNamesCollapseEveryWhiteSpaceRun) {
    expectMapped(normalizedPresetName,
                 {{u"a\u000Bb", u"a b"},
                  {u"a\u0085b", u"a b"},
                  {u" Devis\n\t\u00A0\u2028client\u3000", u"Devis client"},
                  {u"a\u200Bb", u"a\u200Bb"}}); // zero-width space is no white space
    // The comparison key folds the same runs and the full lower case.
    CustomMailPreset taken;
    taken.name = q(u"\u039F\u0394\u039F\u03A3\u0085A");
    EXPECT_EQ(uniquePresetName(q(u"\u03BF\u03B4\u03BF\u03C2 a"), {taken}, std::nullopt),
              q(u"\u03BF\u03B4\u03BF\u03C2 a 2"));
}

TEST(AlphabeticAndNumeric, DecideWhatFileNamesAndFontStacksKeep) {
    expectMapped(
        suggestedFileName,
        {{u"\u24B6 test", u"\u24D0-test.html"},               // circled letter: Alphabetic
         {u"Prix \u00BD \u2167", u"prix-\u00BD-\u2177.html"}, // vulgar fraction, Roman numeral
         {u"\u0E01\u0E33 x", u"\u0E01\u0E33-x.html"},         // Thai letter and vowel sign
         {u"a\u2122b\u00A9", u"a-b.html"},                    // trade mark and copyright signs
         {u"Votre devis \u2013 iPhone 13 (\u00E9cran)", u"votre-devis-iphone-13-\u00E9cran.html"},
         {u"RDV : lundi 10h", u"rdv-lundi-10h.html"},
         {u"\u00C9T\u00C9 \u0416\u0418\u0417\u041D\u042C",
          u"\u00E9t\u00E9-\u0436\u0438\u0437\u043D\u044C.html"},
         {u"Pr\u00EAt \U0001F600\U0001F600 !", u"pr\u00EAt.html"},
         {u"", u"velino.html"},
         {u" -- ?! ", u"velino.html"}});
    EXPECT_EQ(render::sanitizeFontStack(q(u"\u24B6 Sans; x"), "fallback"), q(u"\u24B6 Sans x"));
}

TEST(SuggestedFileName, CutsAt48UserPerceivedCharacters) {
    const QString e = q(u"e\u0301"); // one character
    EXPECT_EQ(suggestedFileName(QString(60, u'a')), QString(48, u'a') + ".html");
    // 47 letters, then a blank: the 48th character is the hyphen and stays.
    EXPECT_EQ(suggestedFileName("--" + QString(47, u'b') + " cdef"), QString(47, u'b') + "-.html");
    EXPECT_EQ(suggestedFileName(e.repeated(50)), e.repeated(48) + ".html");
}

TEST(SyncCodeFilter, KeepsAUserPerceivedCharacterOnlyWhenItIsOneAllowedCharacter) {
    expectMapped(normalizedSyncCode,
                 {{u"cafe\u0301-cafe", u"CAF-CAFE"},  // E with a combining accent is dropped whole
                  {u"caf\u00E9-cafe", u"CAF-CAFE"},   // as is the precomposed letter
                  {u"1\uFE0F\u20E3-2", u"-2"},        // keycap one
                  {u"stra\u00DFe-12", u"STRASSE-12"}, // sharp s upper-cases to two letters
                  {u"\u00e9t\u00e9-\u0410\uff21\U0001F600_+x\t\u00a09", u"T-X9"}});
    // Dropped characters do not count towards the 64; upper-casing comes first.
    EXPECT_EQ(normalizedSyncCode(QString(100, u' ') + QString(64, u'z') + "END"),
              QString(64, u'Z'));
    EXPECT_EQ(normalizedSyncCode(QString(63, u'k') + q(u"\u00df")), QString(63, u'K') + "S");
}
