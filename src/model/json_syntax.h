#pragma once

#include <QByteArrayView>
#include <QString>

namespace velino {

// True when bytes are exactly one JSON text as RFC 8259 defines it, in UTF-8: no trailing
// dot or leading zero in numbers, no raw control character in strings, nothing but white
// space after the value, no byte sequence that is not UTF-8. Otherwise false with *error
// saying, in French, where and why. Nothing is allocated while checking.
bool checkJsonSyntax(QByteArrayView bytes, QString *error);

} // namespace velino
