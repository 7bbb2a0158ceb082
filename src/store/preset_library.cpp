#include "composer_store.h"

#include "identifiers.h"
#include "text.h"

#include <QDateTime>

// The saved-preset library: create, update, overwrite, load and delete named snapshots of
// the whole content. Each operation saves at once and reports in lastAction; the two
// refusals are shown as an alert and change nothing.
namespace velino {

void ComposerStore::saveAsNewCustomPreset() {
    const QString name = normalizedPresetName(customPresetDraftName_);
    if (name.isEmpty()) {
        services_.alerts->showWarning(
            QStringLiteral("Donne un nom a ton preset avant de l'enregistrer."));
        return;
    }
    const QString unique = uniquePresetName(name, customPresets_, std::nullopt);
    CustomMailPreset preset;
    preset.id = services_.ids->newId();
    preset.name = unique;
    preset.sourcePreset = activePreset_;
    preset.data = data_;
    preset.createdAt = services_.clock->now();
    preset.updatedAt = services_.clock->now();

    setCustomPresetDraftName(unique);
    setActiveCustomPresetID(preset.id);
    QList<CustomMailPreset> library = customPresets_;
    upsertCustomPreset(library, preset);
    setCustomPresets(std::move(library));
    regenerate();
    persist();
    setLastAction(QStringLiteral("Preset ") + unique + QStringLiteral(" enregistre."));
}

void ComposerStore::updateActiveCustomPreset() {
    const CustomMailPreset *existing =
        activeCustomPresetID_ ? findCustomPreset(uuidText(*activeCustomPresetID_)) : nullptr;
    if (!existing) {
        services_.alerts->showWarning(
            QStringLiteral("Charge d'abord un preset perso pour le mettre a jour."));
        return;
    }
    QString name = normalizedPresetName(customPresetDraftName_);
    if (name.isEmpty())
        name = existing->name;
    const QString unique = uniquePresetName(name, customPresets_, existing->id);

    CustomMailPreset updated = *existing;
    updated.name = unique;
    updated.sourcePreset = activePreset_;
    updated.data = data_;
    updated.updatedAt = services_.clock->now();

    setCustomPresetDraftName(unique);
    QList<CustomMailPreset> library = customPresets_;
    upsertCustomPreset(library, updated);
    setCustomPresets(std::move(library));
    regenerate();
    persist();
    setLastAction(QStringLiteral("Preset ") + unique + QStringLiteral(" mis a jour."));
}

void ComposerStore::overwriteCustomPreset(CustomMailPreset preset) {
    CustomMailPreset updated = preset;
    updated.sourcePreset = activePreset_;
    updated.data = data_;
    updated.updatedAt = services_.clock->now();

    setActiveCustomPresetID(preset.id);
    setCustomPresetDraftName(preset.name);
    QList<CustomMailPreset> library = customPresets_;
    upsertCustomPreset(library, updated);
    setCustomPresets(std::move(library));
    regenerate();
    persist();
    setLastAction(QStringLiteral("Preset ") + preset.name + QStringLiteral(" remplace."));
}

void ComposerStore::loadCustomPreset(CustomMailPreset preset) {
    setActivePreset(preset.sourcePreset);
    setActiveCustomPresetID(preset.id);
    setCustomPresetDraftName(preset.name);
    MailComposerData content = preset.data;
    content.normalizeLegacyTextFields();
    setData(content);
    regenerate();
    persist();
    setLastAction(QStringLiteral("Preset ") + preset.name + QStringLiteral(" charge."));
}

void ComposerStore::deleteCustomPreset(CustomMailPreset preset) {
    QList<CustomMailPreset> library = customPresets_;
    library.removeIf([&preset](const CustomMailPreset &p) { return p.id == preset.id; });
    setCustomPresets(std::move(library));
    if (activeCustomPresetID_ == preset.id) {
        setActiveCustomPresetID(std::nullopt);
        setCustomPresetDraftName(QString());
    }
    persist();
    setLastAction(QStringLiteral("Preset ") + preset.name + QStringLiteral(" supprime."));
}

const CustomMailPreset *ComposerStore::findCustomPreset(const QString &idText) const {
    const std::optional<QUuid> id = parseUuid(idText);
    if (!id)
        return nullptr;
    for (const CustomMailPreset &preset : customPresets_) {
        if (preset.id == *id)
            return &preset;
    }
    return nullptr;
}

void ComposerStore::overwriteCustomPresetById(const QString &id) {
    if (const CustomMailPreset *preset = findCustomPreset(id))
        overwriteCustomPreset(*preset);
}

void ComposerStore::loadCustomPresetById(const QString &id) {
    if (const CustomMailPreset *preset = findCustomPreset(id))
        loadCustomPreset(*preset);
}

void ComposerStore::deleteCustomPresetById(const QString &id) {
    if (const CustomMailPreset *preset = findCustomPreset(id))
        deleteCustomPreset(*preset);
}

bool ComposerStore::isCustomPresetActive(const CustomMailPreset &preset) const {
    return activeCustomPresetID_ == preset.id;
}

std::optional<QString> ComposerStore::activeCustomPresetName() const {
    if (!activeCustomPresetID_)
        return std::nullopt;
    for (const CustomMailPreset &preset : customPresets_) {
        if (preset.id == *activeCustomPresetID_)
            return preset.name;
    }
    return std::nullopt;
}

bool ComposerStore::canSaveAsNewCustomPreset() const {
    return !normalizedPresetName(customPresetDraftName_).isEmpty();
}

bool ComposerStore::canUpdateActiveCustomPreset() const {
    return activeCustomPresetID_.has_value();
}

QString ComposerStore::activeCustomPresetIdText() const {
    return activeCustomPresetID_ ? uuidText(*activeCustomPresetID_) : QString();
}

QString ComposerStore::activeCustomPresetNameText() const {
    return activeCustomPresetName().value_or(QString());
}

QVariantList ComposerStore::customPresetRows() const {
    QVariantList rows;
    rows.reserve(customPresets_.size());
    for (const CustomMailPreset &preset : customPresets_) {
        rows.append(QVariantMap{
            {QStringLiteral("id"), uuidText(preset.id)},
            {QStringLiteral("name"), preset.name},
            {QStringLiteral("sourceTitle"), presetTitle(preset.sourcePreset)},
            {QStringLiteral("subjectLine"), preset.subjectLine()},
            {QStringLiteral("updatedAt"), preset.updatedAt.toDateTime()},
            {QStringLiteral("isActive"), isCustomPresetActive(preset)},
        });
    }
    return rows;
}

} // namespace velino
