#pragma once

#include <QSettings>

namespace velino {

// The file format of Velino's settings: one "key=value" line per entry, UTF-8, binary
// values as "@ByteArray(...)". Backslash, line feed and carriage return are escaped as
// \\, \n and \r, so every entry fits on one line. It reads and writes a saved state of
// several megabytes in a few milliseconds, where QSettings' INI writer escapes every byte
// through a function call. QSettings still does the locking, the temporary file and the
// rename. Files use the ".conf" extension.
QSettings::Format velinoSettingsFormat();

} // namespace velino
