#pragma once

#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>

namespace velino {

// A random (version 4) UUID.
QUuid randomUuid();

// Canonical 36-character upper-case text (8-4-4-4-12 hexadecimal digits).
QString uuidText(const QUuid &id);

// Accepts only the canonical 8-4-4-4-12 form, in either case; no braces.
std::optional<QUuid> parseUuid(QStringView text);

} // namespace velino
