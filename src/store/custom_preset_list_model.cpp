#include "custom_preset_list_model.h"

#include "composer_store.h"
#include "identifiers.h"

#include <QHash>

namespace velino {

namespace {

bool sameIds(const QList<CustomMailPreset> &a, qsizetype aFrom, const QList<CustomMailPreset> &b,
             qsizetype bFrom, qsizetype count) {
    for (qsizetype k = 0; k < count; ++k) {
        if (a[aFrom + k].id != b[bFrom + k].id)
            return false;
    }
    return true;
}

// The first row whose preset differs between the two lists (the shorter size when none).
qsizetype firstDifference(const QList<CustomMailPreset> &a, const QList<CustomMailPreset> &b) {
    const qsizetype n = std::min(a.size(), b.size());
    qsizetype i = 0;
    while (i < n && a[i].id == b[i].id)
        ++i;
    return i;
}

// What a row shows: the name, the source preset, the subject line and the update time.
bool showsTheSame(const CustomMailPreset &a, const CustomMailPreset &b) {
    return a.name == b.name && a.sourcePreset == b.sourcePreset && a.updatedAt == b.updatedAt &&
           a.data.subject == b.data.subject;
}

} // namespace

CustomPresetListModel::CustomPresetListModel(ComposerStore *store, QObject *parent)
    : QAbstractListModel(parent), m_store(store), m_shown(store->customPresets()),
      m_activeId(store->activeCustomPresetID()) {
    connect(store, &ComposerStore::customPresetsChanged, this,
            &CustomPresetListModel::onLibraryChanged);
    connect(store, &ComposerStore::activeCustomPresetIDChanged, this,
            &CustomPresetListModel::onActivePresetChanged);
}

int CustomPresetListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_shown.size());
}

QVariant CustomPresetListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const CustomMailPreset &preset = m_shown.at(index.row());
    switch (role) {
    case IdRole:
        return uuidText(preset.id);
    case Qt::DisplayRole:
    case NameRole:
        return preset.name;
    case SourceTitleRole:
        return presetTitle(preset.sourcePreset);
    case SubjectLineRole:
        return preset.subjectLine();
    case UpdatedAtRole:
        return preset.updatedAt.toDateTime();
    case IsActiveRole:
        return m_activeId == preset.id;
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> CustomPresetListModel::roleNames() const {
    return {{IdRole, "presetId"},
            {NameRole, "name"},
            {SourceTitleRole, "sourceTitle"},
            {SubjectLineRole, "subjectLine"},
            {UpdatedAtRole, "updatedAt"},
            {IsActiveRole, "isActive"}};
}

void CustomPresetListModel::onLibraryChanged() {
    if (!m_store)
        return;
    const QList<CustomMailPreset> &library = m_store->customPresets();
    // Announced without a change of the library (the loaded preset changed): same storage.
    if (library.constData() == m_shown.constData() && library.size() == m_shown.size())
        return;
    const QList<CustomMailPreset> before = m_shown;
    const qsizetype countBefore = before.size();
    if (library.size() == before.size() && sameIds(library, 0, before, 0, before.size())) {
        m_shown = library;
    } else if (!applyInsertion(library) && !applyRemoval(library) && !applyMove(library)) {
        beginResetModel();
        m_shown = library;
        endResetModel();
        if (m_shown.size() != countBefore)
            Q_EMIT countChanged();
        return;
    }
    announceChangedRows(before);
    if (m_shown.size() != countBefore)
        Q_EMIT countChanged();
}

bool CustomPresetListModel::applyInsertion(const QList<CustomMailPreset> &library) {
    if (library.size() != m_shown.size() + 1)
        return false;
    const qsizetype at = firstDifference(library, m_shown);
    if (!sameIds(library, at + 1, m_shown, at, m_shown.size() - at))
        return false;
    beginInsertRows(QModelIndex(), int(at), int(at));
    m_shown = library;
    endInsertRows();
    return true;
}

bool CustomPresetListModel::applyRemoval(const QList<CustomMailPreset> &library) {
    if (library.size() + 1 != m_shown.size())
        return false;
    const qsizetype at = firstDifference(library, m_shown);
    if (!sameIds(library, at, m_shown, at + 1, library.size() - at))
        return false;
    beginRemoveRows(QModelIndex(), int(at), int(at));
    m_shown = library;
    endRemoveRows();
    return true;
}

// One preset taken out and put back elsewhere, the others keeping their order.
bool CustomPresetListModel::applyMove(const QList<CustomMailPreset> &library) {
    if (library.size() != m_shown.size())
        return false;
    const qsizetype first = firstDifference(library, m_shown);
    qsizetype last = library.size() - 1;
    while (last > first && library[last].id == m_shown[last].id)
        --last;
    if (first >= last)
        return false;
    const qsizetype span = last - first;
    if (library[first].id == m_shown[last].id &&
        sameIds(library, first + 1, m_shown, first, span)) {
        beginMoveRows(QModelIndex(), int(last), int(last), QModelIndex(), int(first));
    } else if (library[last].id == m_shown[first].id &&
               sameIds(library, first, m_shown, first + 1, span)) {
        beginMoveRows(QModelIndex(), int(first), int(first), QModelIndex(), int(last + 1));
    } else {
        return false;
    }
    m_shown = library;
    endMoveRows();
    return true;
}

void CustomPresetListModel::announceChangedRows(const QList<CustomMailPreset> &before) {
    QHash<QUuid, qsizetype> rowBefore;
    rowBefore.reserve(before.size());
    for (qsizetype row = 0; row < before.size(); ++row)
        rowBefore.insert(before[row].id, row);
    for (qsizetype row = 0; row < m_shown.size(); ++row) {
        const auto found = rowBefore.constFind(m_shown[row].id);
        if (found != rowBefore.cend() && !showsTheSame(before[*found], m_shown[row])) {
            const QModelIndex changed = index(int(row));
            Q_EMIT dataChanged(changed, changed,
                               {NameRole, SourceTitleRole, SubjectLineRole, UpdatedAtRole});
        }
    }
}

void CustomPresetListModel::onActivePresetChanged() {
    if (!m_store || m_store->activeCustomPresetID() == m_activeId)
        return;
    const std::optional<QUuid> previous = m_activeId;
    m_activeId = m_store->activeCustomPresetID();
    announceActiveRow(previous);
    announceActiveRow(m_activeId);
}

void CustomPresetListModel::announceActiveRow(const std::optional<QUuid> &id) {
    if (!id)
        return;
    const int row = rowOf(*id);
    if (row < 0)
        return;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {IsActiveRole});
}

int CustomPresetListModel::rowOf(const QUuid &id) const {
    for (qsizetype row = 0; row < m_shown.size(); ++row) {
        if (m_shown[row].id == id)
            return int(row);
    }
    return -1;
}

} // namespace velino
