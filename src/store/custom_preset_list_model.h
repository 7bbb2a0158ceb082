#pragma once

#include "custom_mail_preset.h"

#include <QAbstractListModel>
#include <QList>
#include <QPointer>
#include <QUuid>

#include <optional>

namespace velino {

class ComposerStore;

// The store's saved-preset library as a list model, one row per preset in the library's
// order (newest first). The store replaces its library as a whole at each operation; the
// model compares the new library with the one it last showed and announces only what
// changed: one row inserted (save), removed (delete) or moved to the top (update,
// overwrite), the rows whose shown values changed, and the two rows whose highlight
// follows the loaded preset. Anything else (a library pulled from the phone) resets.
class CustomPresetListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        NameRole,
        SourceTitleRole,
        SubjectLineRole,
        UpdatedAtRole,
        IsActiveRole,
    };

    explicit CustomPresetListModel(ComposerStore *store, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_shown.size()); }

Q_SIGNALS:
    void countChanged();

private:
    void onLibraryChanged();
    void onActivePresetChanged();
    bool applyInsertion(const QList<CustomMailPreset> &library);
    bool applyRemoval(const QList<CustomMailPreset> &library);
    bool applyMove(const QList<CustomMailPreset> &library);
    void announceChangedRows(const QList<CustomMailPreset> &before);
    void announceActiveRow(const std::optional<QUuid> &id);
    int rowOf(const QUuid &id) const;

    QPointer<ComposerStore> m_store;
    // The library as the view last heard of it; shares its storage with the store's.
    QList<CustomMailPreset> m_shown;
    std::optional<QUuid> m_activeId;
};

} // namespace velino
