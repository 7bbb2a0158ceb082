#include "suggested_file_name.h"

#include "text.h"

#include <QList>

namespace velino {

QString suggestedFileName(const QString &subject) {
    // Each kept character is a whole cluster; others become one hyphen, and a hyphen is
    // never written twice in a row, which folds every run of hyphens into one.
    QList<QStringView> kept;
    const QString lowered = text::lowerCased(subject);
    text::forEachCharacter(lowered, [&kept](QStringView cluster) {
        const char32_t first = text::firstCodePoint(cluster);
        if (text::isAlphabetic(first) || text::isNumeric(first))
            kept.append(cluster);
        else if (kept.isEmpty() || kept.last() != u"-")
            kept.append(u"-");
    });
    qsizetype begin = 0;
    qsizetype end = kept.size();
    while (begin < end && kept[begin] == u"-")
        ++begin;
    while (end > begin && kept[end - 1] == u"-")
        --end;
    end = std::min(end, begin + 48);

    QString name;
    for (qsizetype i = begin; i < end; ++i)
        name.append(kept[i]);
    if (name.isEmpty())
        name = QStringLiteral("velino");
    return name + QStringLiteral(".html");
}

} // namespace velino
