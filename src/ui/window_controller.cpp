#include "window_controller.h"

#include "mail_app_texts.h"
#include "preset_kind.h"
#include "service_host.h"

#include <QVariantMap>

namespace velino::ui {

WindowController::WindowController(QObject *parent)
    : WindowController(StoreServices::qtDefaults(), parent) {}

WindowController::WindowController(StoreServices services, QObject *parent)
    : QObject(parent), m_dialogs(new WindowDialogs(this)) {
    services.alerts = m_dialogs->alertPresenter();
    services.saveDialog = m_dialogs->saveDialog();
    m_urls = services.urls;
    m_store = std::make_unique<ComposerStore>(std::move(services));
    ComposerStore *store = m_store.get();
    m_presetModel = new CustomPresetListModel(store, this);
    connect(store, &ComposerStore::activePresetChanged, this,
            &WindowController::activePresetTileChanged);
    connect(store, &ComposerStore::activeCustomPresetIDChanged, this,
            &WindowController::activePresetTileChanged);
    connect(store, &ComposerStore::activeCustomPresetIDChanged, this,
            &WindowController::loadedPresetTextChanged);
    connect(store, &ComposerStore::customPresetsChanged, this,
            &WindowController::loadedPresetTextChanged);
    connect(store, &ComposerStore::currentDetailsCountChanged, this,
            &WindowController::detailsCountTextChanged);
}

// The store goes first: its timers and pending work may still reach the dialogs.
WindowController::~WindowController() {
    m_store.reset();
}

void WindowController::requestReset() {
    setShowResetAlert(true);
}

void WindowController::confirmReset() {
    setShowResetAlert(false);
    m_store->resetToDefault();
}

void WindowController::cancelReset() {
    setShowResetAlert(false);
}

void WindowController::setShowResetAlert(bool show) {
    if (m_showResetAlert == show)
        return;
    m_showResetAlert = show;
    Q_EMIT showResetAlertChanged();
}

QVariantList WindowController::presetTiles() const {
    QVariantList tiles;
    for (const PresetKind kind : kAllPresetKinds) {
        tiles.append(QVariantMap{{QStringLiteral("id"), presetId(kind)},
                                 {QStringLiteral("title"), presetTitle(kind)},
                                 {QStringLiteral("summary"), presetSummary(kind)}});
    }
    return tiles;
}

QString WindowController::activePresetTile() const {
    if (m_store->activeCustomPresetID())
        return QString();
    return presetId(m_store->activePreset());
}

QString WindowController::loadedPresetText() const {
    if (const std::optional<QString> name = m_store->activeCustomPresetName())
        return QStringLiteral("Preset charge : ") + *name;
    return QStringLiteral("Aucun preset perso charge pour l'instant.");
}

QString WindowController::serviceHost() const {
    return velino::serviceHost();
}

QUrl WindowController::webInterfaceUrl() const {
    return velino::webInterfaceUrl();
}

QString WindowController::mailSectionTitle() const {
    return platformMailAppTexts().sectionTitle;
}

QString WindowController::mailSectionSubtitle() const {
    return platformMailAppTexts().sectionSubtitle;
}

QString WindowController::mailSummaryTitle() const {
    return platformMailAppTexts().summaryTitle;
}

QString WindowController::mailSummaryValue() const {
    return platformMailAppTexts().summaryValue;
}

QString WindowController::syncSubtitle() const {
    return QStringLiteral("Relie cette app a l'interface privee ") + serviceHost() +
           QStringLiteral("/velino.html.");
}

QString WindowController::detailsCountText() const {
    return QString::number(m_store->currentDetailsCount());
}

bool WindowController::openWebInterface() {
    return m_urls && m_urls->openUrl(webInterfaceUrl());
}

} // namespace velino::ui
