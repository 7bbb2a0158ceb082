#pragma once

#include "mail_composer_data.h"

#include <QByteArray>
#include <QString>

namespace velino::test {

// The default record with one field replaced.
MailComposerData defaultWith(QStringView field, const QString &value);

// Bytes of a file under tests/data.
QByteArray readTestData(const QString &name);

} // namespace velino::test

#include <ostream>

// Readable QString values in test failure messages.
inline void PrintTo(const QString &s, std::ostream *os) {
    *os << '"' << s.toStdString() << '"';
}
