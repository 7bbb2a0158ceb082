#pragma once

#include <QString>

namespace velino {

// File name for an exported e-mail: the subject lower-cased, letters and numbers kept,
// everything else turned into single hyphens, cut to 48 characters, ".html" appended;
// "velino.html" when nothing is left.
QString suggestedFileName(const QString &subject);

} // namespace velino
