#include "mail_template_context.h"
#include "test_records.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace velino;

// Reference documents, byte for byte. Besides the default, blank and hostile records, each
// other record reaches template branches: line breaks, absent blocks and their separators,
// a single detail row, the "#" button, blank or absent phone and address in the signature,
// line feed runs of the text version. The hostile record checks the escaping.
class GoldenDocument : public ::testing::TestWithParam<const char *> {};

TEST_P(GoldenDocument, MatchesByteForByte) {
    const QString name = QString::fromLatin1(GetParam());
    QString error;
    const auto record = MailComposerData::fromJson(
        QJsonDocument::fromJson(test::readTestData(name + "_record.json")).object(), {}, &error);
    ASSERT_TRUE(record.has_value()) << error.toStdString();
    const MailTemplateContext context(*record);
    EXPECT_EQ(context.htmlDocument().toUtf8(), test::readTestData(name + "_email.html"));
    EXPECT_EQ(context.plainText().toUtf8(), test::readTestData(name + "_email.txt"));
}

INSTANTIATE_TEST_SUITE_P(Records, GoldenDocument,
                         ::testing::Values("default", "blank", "hostile", "sparse", "trimmed",
                                           "closing", "footer", "contact"));
