#pragma once

#include <QString>

namespace velino {

// Base64 of the UTF-8 bytes: standard alphabet, "=" padding, no line breaks.
QString base64Utf8(const QString &value);

// The AppleScript program that opens a visible HTML draft in Mail. Every value travels as
// base64 between two double quotes, so no value can break the quoting: the result is always
// the 23 fixed lines plus base64 characters. Subject and HTML are taken as they are.
QString mailDraftScript(const QString &subject, const QString &recipient, const QString &sender,
                        const QString &html);

} // namespace velino
