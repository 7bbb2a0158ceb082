#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

namespace velino {

// One font table entry: a family name and its RTF family class (\fswiss, \froman, ...).
struct RtfFont {
    QString family;
    QByteArray familyClass;
    bool operator==(const RtfFont &) const = default;
};

// Picks, for a CSS font stack, the first family a word processor on this machine can show.
// Browser and system keywords (-apple-system, BlinkMacSystemFont, system-ui, ui-sans-serif,
// ...) and families that are not installed are skipped. A generic family (sans-serif, serif,
// monospace, cursive, fantasy) ends the search with the installed family the system's font
// matching gives for it, so that the name is one the reader finds here, while the class lets
// a reader elsewhere substitute its own. A stack with nothing usable counts as sans-serif.
// Answers are remembered per stack: the font database is slow to ask for every run.
class RtfFontChooser {
public:
    RtfFont choose(const QStringList &stack);

private:
    QHash<QStringList, RtfFont> chosen_;
};

} // namespace velino
