#pragma once

#include <QString>

namespace velino::fuzz {

// Checks a generated e-mail: every "<" opens a comment, the doctype or a tag of the template
// (so no user text reached the markup unescaped), elements close in order, every attribute
// value is quoted, and every "&" starts an entity. Returns an empty text, or what is wrong.
QString htmlProblem(const QString &html);

} // namespace velino::fuzz
