#include "suggested_file_name.h"
#include "test_records.h"

#include <gtest/gtest.h>

using velino::suggestedFileName;

TEST(SuggestedFileName, LowerCasesHyphenatesAndCutsAt48Characters) {
    const QString e = QString::fromUtf16(u"e\u0301"); // one character
    const std::pair<QString, QString> cases[] = {
        {QString::fromUtf16(u"Votre devis \u2013 iPhone 13 (\u00E9cran)"),
         QString::fromUtf16(u"votre-devis-iphone-13-\u00E9cran.html")},
        {"RDV : lundi 10h", "rdv-lundi-10h.html"},
        {QString::fromUtf16(u"\u00C9T\u00C9 \u0416\u0418\u0417\u041D\u042C"),
         QString::fromUtf16(u"\u00E9t\u00E9-\u0436\u0438\u0437\u043D\u044C.html")},
        {QString::fromUtf16(u"Pr\u00EAt \U0001F600\U0001F600 !"),
         QString::fromUtf16(u"pr\u00EAt.html")},
        {"", "velino.html"},
        {" -- ?! ", "velino.html"},
        {QString(60, u'a'), QString(48, u'a') + ".html"},
        // 47 letters, then a blank: the 48th character is the hyphen and stays.
        {"--" + QString(47, u'b') + " cdef", QString(47, u'b') + "-.html"},
        {e.repeated(50), e.repeated(48) + ".html"},
    };
    for (const auto &[subject, name] : cases)
        EXPECT_EQ(suggestedFileName(subject), name) << subject.toStdString();
}
