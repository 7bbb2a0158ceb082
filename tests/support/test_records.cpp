#include "test_records.h"

#include <QFile>

#include <gtest/gtest.h>

namespace velino::test {

MailComposerData defaultWith(QStringView field, const QString &value) {
    MailComposerData d = MailComposerData::defaultRecord();
    const MailComposerData::Field *f = MailComposerData::field(field);
    EXPECT_NE(f, nullptr) << field.toString().toStdString();
    if (f)
        d.*f->member = value;
    return d;
}

QByteArray readTestData(const QString &name) {
    QFile file(QStringLiteral(VELINO_TEST_DATA_DIR "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return file.readAll();
}

} // namespace velino::test
