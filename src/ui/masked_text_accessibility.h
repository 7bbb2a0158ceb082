#pragma once

namespace velino::ui {

// What assistive tools read of a password field (a text input whose echo mode hides its
// text): only what the screen shows, its mask characters. Qt 6.4 gives them the field's
// real text, both as the field's content and in the text-change events it sends when the
// text is replaced (the cleared field after a wrong attempt "deletes" the whole password).
//
// Replaces Qt Quick's accessible object for such fields and masks the texts of their
// text-change events. Call it once the QML engine has loaded Qt Quick and before a
// window's items are created (Qt asks the factory installed last first); calling it again
// is harmless. A masked field is named by its placeholder unless Accessible.name is set,
// and setting it in QML makes Qt's own object first: leave it unset on password fields.
void installMaskedTextAccessibility();

} // namespace velino::ui
