#pragma once

#include <QString>

namespace velino {

// An error raised by Velino's own code: domain "VELINO", a code and a French description.
// Callers show only the description.
struct VelinoError {
    int code = 0;
    QString description;
};

} // namespace velino
