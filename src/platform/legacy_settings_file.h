#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace velino {

// The one settings file of earlier versions of Velino (on Linux ~/.config/Korvel/Velino.conf),
// in a line-based format of their own: one "key=value" line per entry, UTF-8, binary values
// as "@ByteArray(...)", text starting with "@" as "@String(...)", and backslash, line feed
// and carriage return escaped as \\, \n and \r ("=" in keys as \q). Only read, to move its
// content to the current files.
struct LegacySettings {
    std::optional<QByteArray> document; // binary value of "velino-native-v1"
    std::optional<QString> syncCode;    // text value of "velino-sync-code-v1"
};

enum class LegacyFileState {
    Absent,     // no file, or a file that is not in the earlier format (the current INI file)
    Read,       // in the earlier format; the entries are in *settings
    Unreadable, // there, but it cannot be opened
};

// A file is in the earlier format when one of its lines holds the saved document; the INI
// file that replaces it never does. Line ends converted to CR LF are read as plain line
// feeds: the format escapes every carriage return it holds, so a raw one at the end of a
// line was added by the conversion.
LegacyFileState readLegacySettingsFile(const QString &path, LegacySettings *settings);
// The same from the file's bytes: Absent or Read.
LegacyFileState parseLegacySettings(QByteArrayView content, LegacySettings *settings);

} // namespace velino
