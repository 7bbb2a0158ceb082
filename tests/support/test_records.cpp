#include "test_records.h"

#include <QFile>

#include <gtest/gtest.h>

namespace velino::test {
namespace {

MailComposerData with(MailComposerData d, QStringView field, const QString &value) {
    const MailComposerData::Field *f = MailComposerData::field(field);
    EXPECT_NE(f, nullptr) << field.toString().toStdString();
    if (f)
        d.*f->member = value;
    return d;
}

} // namespace

MailComposerData defaultWith(QStringView field, const QString &value) {
    return with(MailComposerData::defaultRecord(), field, value);
}

MailComposerData blankWith(QStringView field, const QString &value) {
    return with(MailComposerData::blank(), field, value);
}

QByteArray readTestData(const QString &name) {
    QFile file(QStringLiteral(VELINO_TEST_DATA_DIR "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

} // namespace velino::test
