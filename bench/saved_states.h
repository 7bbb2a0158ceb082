#pragma once

#include "saved_payload.h"

#include <QString>
#include <QStringList>

// The saved states the window benchmark starts from, written into a settings folder as the
// program would find them.
namespace velino::bench {

// Words and blanks up to `size` characters; with `lineLength` > 0, a line break ends every
// line of that many characters. The long texts of the benchmark and of the window tests.
QString longText(qsizetype size, qsizetype lineLength);

// The default record and 1,000 saved presets of the four kinds, updated in a mixed order.
SavedPayload libraryOf1000Presets();

// "empty" (nothing saved), "presets-1000" (a library of 1,000 presets), "body-4mb-line"
// (a message body of one 4 MB line), "body-4mb-lines" (4 MB in 150,000 short lines).
QStringList savedStateNames();

// Writes the saved state `name` under configHome and dataHome (the XDG_CONFIG_HOME and
// XDG_DATA_HOME of the run); false for an unknown name or a failed write.
bool writeSavedState(const QString &name, const QString &configHome, const QString &dataHome);

} // namespace velino::bench
