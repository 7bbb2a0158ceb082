#pragma once

#include <QString>

#include <optional>

namespace velino {

// Repairs one text written by an earlier version: percent escapes are decoded (a malformed
// escape or bytes that are not UTF-8 keep the text as it is), "+" standing for blanks in a
// blank-free text becomes blanks, and a former highlight line, matched whole after
// trimming, becomes the current one.
QString normalizeLegacyText(const QString &text);

// Decodes %XX escapes as UTF-8 bytes; nothing on a malformed escape or invalid UTF-8.
std::optional<QString> percentDecoded(const QString &text);

} // namespace velino
