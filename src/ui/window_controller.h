#pragma once

#include "composer_store.h"
#include "custom_preset_list_model.h"
#include "store_services.h"
#include "window_dialogs.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace velino::ui {

// Everything the main window content reads besides the lock: the window's one composer
// store, created with the window and kept for its whole life, the window's own dialogs
// (given to the store as its alert presenter and save dialog), the reset confirmation
// state, and the few texts and rules the window derives from the store.
class WindowController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(velino::ComposerStore *store READ store CONSTANT)
    Q_PROPERTY(velino::ui::WindowDialogs *dialogs READ dialogs CONSTANT)
    Q_PROPERTY(QAbstractListModel *customPresetModel READ customPresetModel CONSTANT)
    Q_PROPERTY(bool showResetAlert READ showResetAlert NOTIFY showResetAlertChanged)
    Q_PROPERTY(QVariantList presetTiles READ presetTiles CONSTANT)
    Q_PROPERTY(QString activePresetTile READ activePresetTile NOTIFY activePresetTileChanged)
    Q_PROPERTY(QString loadedPresetText READ loadedPresetText NOTIFY loadedPresetTextChanged)
    Q_PROPERTY(QString serviceHost READ serviceHost CONSTANT)
    Q_PROPERTY(QUrl webInterfaceUrl READ webInterfaceUrl CONSTANT)
    Q_PROPERTY(QString syncSubtitle READ syncSubtitle CONSTANT)
    Q_PROPERTY(QString detailsCountText READ detailsCountText NOTIFY detailsCountTextChanged)
    // The mail card's title and subtitle and the summary card's title and value, naming the
    // platform's mail application (the card's chip and hint are the store's).
    Q_PROPERTY(QString mailSectionTitle READ mailSectionTitle CONSTANT)
    Q_PROPERTY(QString mailSectionSubtitle READ mailSectionSubtitle CONSTANT)
    Q_PROPERTY(QString mailSummaryTitle READ mailSummaryTitle CONSTANT)
    Q_PROPERTY(QString mailSummaryValue READ mailSummaryValue CONSTANT)

public:
    // A store over the platform's services, with this window's alerts and save panel.
    explicit WindowController(QObject *parent = nullptr);
    // A store over the given services; the alerts and the save dialog are replaced by this
    // window's own.
    explicit WindowController(StoreServices services, QObject *parent = nullptr);
    ~WindowController() override;

    ComposerStore *store() const { return m_store.get(); }
    WindowDialogs *dialogs() const { return m_dialogs; }
    // The saved-preset library as the window's list shows it, row by row.
    QAbstractListModel *customPresetModel() const { return m_presetModel; }

    bool showResetAlert() const { return m_showResetAlert; }
    // "Nouveau": asks for confirmation first.
    Q_INVOKABLE void requestReset();
    // "Reinitialiser": back to the default template; closes the confirmation.
    Q_INVOKABLE void confirmReset();
    // "Annuler": closes the confirmation, nothing else.
    Q_INVOKABLE void cancelReset();

    // The built-in presets in tile order: { id, title, summary }.
    QVariantList presetTiles() const;
    // The id of the highlighted tile: the store's active preset while no saved preset is
    // loaded, else empty (no tile is highlighted while a saved preset is loaded).
    QString activePresetTile() const;
    // "Preset charge : <name>", or "Aucun preset perso charge pour l'instant.".
    QString loadedPresetText() const;

    QString serviceHost() const;
    QUrl webInterfaceUrl() const;
    // Subtitle of the sync card, naming the web interface's page.
    QString syncSubtitle() const;
    QString detailsCountText() const;
    QString mailSectionTitle() const;
    QString mailSectionSubtitle() const;
    QString mailSummaryTitle() const;
    QString mailSummaryValue() const;

    // Opens the phone web interface in the default browser.
    Q_INVOKABLE bool openWebInterface();

Q_SIGNALS:
    void showResetAlertChanged();
    void activePresetTileChanged();
    void loadedPresetTextChanged();
    void detailsCountTextChanged();

private:
    void setShowResetAlert(bool show);

    WindowDialogs *m_dialogs;
    std::shared_ptr<UrlOpener> m_urls;
    std::unique_ptr<ComposerStore> m_store;
    CustomPresetListModel *m_presetModel = nullptr;
    bool m_showResetAlert = false;
};

} // namespace velino::ui
