#include "preset_names.h"

#include "text.h"

#include <QSet>

#include <algorithm>

namespace velino {
namespace {

QString collapseSpaces(QStringView text) {
    QString out;
    out.reserve(text.size());
    bool inRun = false;
    for (const QChar c : text) {
        // Every White_Space code point lies in the basic plane.
        if (text::isWhiteSpace(c.unicode())) {
            if (!inRun)
                out.append(u' ');
            inRun = true;
        } else {
            out.append(c);
            inRun = false;
        }
    }
    return out;
}

QString comparisonKey(const QString &name) {
    return text::nfc(text::lowerCased(collapseSpaces(text::trimmedView(name))));
}

} // namespace

QString normalizedPresetName(const QString &name) {
    return collapseSpaces(text::trimmedView(name));
}

QString uniquePresetName(const QString &name, const QList<CustomMailPreset> &library,
                         const std::optional<QUuid> &excluding) {
    const QString base = normalizedPresetName(name);
    if (base.isEmpty())
        return QStringLiteral("Preset client");
    QSet<QString> taken;
    for (const CustomMailPreset &preset : library) {
        if (!excluding || preset.id != *excluding)
            taken.insert(comparisonKey(preset.name));
    }
    const auto isFree = [&taken](const QString &candidate) {
        return !taken.contains(text::nfc(text::lowerCased(candidate)));
    };
    if (isFree(base))
        return base;
    for (qint64 n = 2;; ++n) {
        const QString candidate = base + u' ' + QString::number(n);
        if (isFree(candidate))
            return candidate;
    }
}

void sortNewestFirst(QList<CustomMailPreset> &library) {
    std::stable_sort(library.begin(), library.end(),
                     [](const CustomMailPreset &a, const CustomMailPreset &b) {
                         return a.updatedAt > b.updatedAt;
                     });
}

void upsertCustomPreset(QList<CustomMailPreset> &library, const CustomMailPreset &preset) {
    library.removeIf([&preset](const CustomMailPreset &p) { return p.id == preset.id; });
    library.append(preset);
    sortNewestFirst(library);
}

} // namespace velino
