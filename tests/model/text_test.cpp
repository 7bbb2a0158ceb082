#include "test_records.h"
#include "text.h"

#include <gtest/gtest.h>

using namespace velino;

TEST(Trim, RemovesEveryWhiteSpaceAndLineBreakAtBothEnds) {
    const QString edges = QString::fromUtf16(u"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u200A"
                                             u"\u2028\u2029\u202F\u205F\u3000");
    EXPECT_EQ(text::trimmed(edges + "a \u00A0b" + edges), QString::fromUtf16(u"a \u00A0b"));
    EXPECT_TRUE(text::isBlank(edges));
}

TEST(Trim, KeepsCharactersOutsideTheSet) {
    // Zero-width space and the Mongolian vowel separator are format characters, not spaces.
    const QString zeroWidth = QString::fromUtf16(u"\u200Bx\u180E");
    EXPECT_EQ(text::trimmed(zeroWidth), zeroWidth);
    EXPECT_FALSE(text::isBlank(QString::fromUtf16(u"\u200B")));
    EXPECT_TRUE(text::isBlank(QString()));
}

TEST(CharacterCount, CountsUserPerceivedCharacters) {
    EXPECT_EQ(text::characterCount(QString::fromUtf16(u"e\u0301te\u0301")), 3);
    // Family emoji: three people joined by zero-width joiners.
    EXPECT_EQ(
        text::characterCount(QString::fromUtf16(u"\U0001F468\u200D\U0001F469\u200D\U0001F467")), 1);
    EXPECT_EQ(text::characterCount(QString::fromUtf16(u"\U0001F1EB\U0001F1F7\U0001F1EB\U0001F1F7")),
              2);
    EXPECT_EQ(text::characterCount("a\r\nb"), 3);
}

TEST(CanonicalEquality, PrecomposedEqualsDecomposed) {
    EXPECT_TRUE(text::canonicallyEqual(QString::fromUtf16(u"\u00E9t\u00E9"),
                                       QString::fromUtf16(u"e\u0301te\u0301")));
    EXPECT_FALSE(text::canonicallyEqual("ete", QString::fromUtf16(u"\u00E9t\u00E9")));
    EXPECT_FALSE(text::canonicallyEqual("a", "A"));
}
