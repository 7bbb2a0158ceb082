#include "composer_store.h"

#include "mail_app_texts.h"
#include "mail_bridge.h"
#include "mail_template_context.h"
#include "saved_payload.h"
#include "state_keys.h"
#include "sync_client.h"
#include "sync_transport.h"
#include "text.h"

#include <QDateTime>
#include <QLocale>

namespace velino {

const QString ComposerStore::kDefaultsKey = QString::fromLatin1(kSavedStateKey);
const QString ComposerStore::kSyncCodeKey = QString::fromLatin1(velino::kSyncCodeKey);

ComposerStore::ComposerStore(StoreServices services, QObject *parent)
    : QObject(parent), services_(std::move(services)),
      currentFormatStatus_(QStringLiteral("Pret a envoyer")),
      saveStatus_(QStringLiteral("Sauvegarde locale active.")),
      lastAction_(QStringLiteral("Application prete.")),
      syncStatus_(QStringLiteral("Aucune synchronisation effectuee.")) {
    for (QTimer *timer : {&dataDebounce_, &draftNameDebounce_, &syncCodeDebounce_}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer); // a coarse timer may fire up to 5 % early
        timer->setInterval(kDebounceMilliseconds);
    }
    mailBridge_ = std::make_unique<MailBridge>(
        services_.makeMailExecutor(*services_.programs, *services_.files, *services_.ids),
        *services_.urls);
    syncTransport_ = std::make_unique<SyncTransport>();
    syncTransport_->setTransferTimeout(services_.syncTransferTimeout);
    if (!services_.extraSyncCaCertificates.isEmpty())
        syncTransport_->setExtraCaCertificates(services_.extraSyncCaCertificates);
    syncCode_ = services_.storage->readSyncCode().value_or(QString());
    loadSavedState();
    bind();
    regenerate();
    isBootstrapping_ = false;
    persist();
}

ComposerStore::~ComposerStore() = default;

// ---- Loading ---------------------------------------------------------------------------

void ComposerStore::loadSavedState() {
    const std::optional<QByteArray> bytes = services_.storage->readDocument();
    if (!bytes) {
        takeDefaultState();
        return;
    }
    QString error;
    std::optional<SavedPayload> payload = SavedPayload::fromJson(*bytes, &error);
    if (!payload) {
        // An unreadable state is replaced by the default one at the first save.
        takeDefaultState();
        return;
    }
    takeSavedState(std::move(*payload));
}

void ComposerStore::takeDefaultState() {
    activePreset_ = PresetKind::Devis;
    data_ = MailComposerData::defaultRecord();
    data_.normalizeLegacyTextFields();
    customPresetDraftName_.clear();
    customPresets_.clear();
    activeCustomPresetID_.reset();
}

void ComposerStore::takeSavedState(SavedPayload &&payload) {
    activePreset_ = payload.preset;
    data_ = std::move(payload.data);
    data_.normalizeLegacyTextFields();
    for (CustomMailPreset &preset : payload.customPresets)
        preset.data.normalizeLegacyTextFields();
    customPresets_ = std::move(payload.customPresets);
    sortNewestFirst(customPresets_);
    activeCustomPresetID_ = payload.activeCustomPresetID;
    customPresetDraftName_ = std::move(payload.customPresetDraftName);
}

// ---- Pipelines -------------------------------------------------------------------------

void ComposerStore::bind() {
    connect(&dataDebounce_, &QTimer::timeout, this, [this] {
        regenerate();
        persist();
    });
    connect(&draftNameDebounce_, &QTimer::timeout, this, [this] { persist(); });
    connect(&syncCodeDebounce_, &QTimer::timeout, this,
            [this] { services_.storage->writeSyncCode(normalizedSyncCode(syncCode_)); });
    pipelinesBound_ = true;
}

void ComposerStore::savePendingChanges() {
    const bool dataPending = dataDebounce_.isActive();
    const bool draftNamePending = draftNameDebounce_.isActive();
    const bool syncCodePending = syncCodeDebounce_.isActive();
    dataDebounce_.stop();
    draftNameDebounce_.stop();
    syncCodeDebounce_.stop();
    if (dataPending)
        regenerate();
    if (dataPending || draftNamePending)
        persist();
    if (syncCodePending)
        services_.storage->writeSyncCode(normalizedSyncCode(syncCode_));
}

void ComposerStore::setData(const MailComposerData &data) {
    if (pipelinesBound_)
        dataDebounce_.start();
    data_ = data;
    Q_EMIT dataChanged();
}

void ComposerStore::setDataField(const QString &field, const QString &value) {
    const MailComposerData::Field *f = MailComposerData::field(field);
    if (!f)
        return;
    MailComposerData copy = data_;
    copy.*f->member = value;
    setData(copy);
}

void ComposerStore::setActivePreset(PresetKind kind) {
    if (pipelinesBound_)
        persist(); // runs before the value is stored, so it saves the previous preset
    activePreset_ = kind;
    Q_EMIT activePresetChanged();
}

void ComposerStore::setCustomPresetDraftName(const QString &name) {
    if (pipelinesBound_)
        draftNameDebounce_.start();
    customPresetDraftName_ = name;
    Q_EMIT customPresetDraftNameChanged();
}

void ComposerStore::setActiveCustomPresetID(const std::optional<QUuid> &id) {
    if (pipelinesBound_)
        persist(); // runs before the value is stored, so it saves the previous id
    activeCustomPresetID_ = id;
    Q_EMIT activeCustomPresetIDChanged();
    Q_EMIT customPresetsChanged(); // rows carry their highlight
}

void ComposerStore::setSyncCode(const QString &code) {
    if (pipelinesBound_)
        syncCodeDebounce_.start();
    syncCode_ = code;
    Q_EMIT syncCodeChanged();
}

void ComposerStore::setCustomPresets(QList<CustomMailPreset> presets) {
    customPresets_ = std::move(presets);
    Q_EMIT customPresetsChanged();
}

// ---- Outputs and saving ----------------------------------------------------------------

void ComposerStore::regenerate() {
    const MailTemplateContext context(data_);
    generatedHTML_ = context.htmlDocument();
    Q_EMIT generatedHTMLChanged();
    generatedText_ = context.plainText();
    Q_EMIT generatedTextChanged();
    generatedSubject_ = context.subject;
    Q_EMIT generatedSubjectChanged();
    currentChecklist_ = context.checklist();
    Q_EMIT currentChecklistChanged();
    currentDetailsCount_ = static_cast<int>(context.detailsCount());
    Q_EMIT currentDetailsCountChanged();
    currentFormatStatus_ = context.formatStatus();
    Q_EMIT currentFormatStatusChanged();
}

void ComposerStore::persist() {
    SavedPayload payload;
    payload.preset = activePreset_;
    payload.data = data_;
    payload.customPresets = customPresets_;
    payload.activeCustomPresetID = activeCustomPresetID_;
    payload.customPresetDraftName = customPresetDraftName_;
    const QByteArray bytes = payload.toJson();
    if (bytes.isEmpty()) {
        setSaveStatus(QStringLiteral("Sauvegarde locale indisponible."));
        return;
    }
    if (!services_.storage->writeDocument(bytes)) {
        // The state stays in memory; the next successful save writes it whole.
        setSaveStatus(QStringLiteral("Sauvegarde locale indisponible."));
        return;
    }
    if (isBootstrapping_) {
        setSaveStatus(QStringLiteral("Sauvegarde locale active."));
        return;
    }
    const QDateTime local = services_.clock->now().toDateTime().toLocalTime();
    const QLocale french(QLocale::French, QLocale::France);
    setSaveStatus(QStringLiteral("Sauvegarde locale active · ") +
                  french.toString(local, QStringLiteral("HH:mm")));
}

void ComposerStore::setSaveStatus(const QString &text) {
    saveStatus_ = text;
    Q_EMIT saveStatusChanged();
}

void ComposerStore::setLastAction(const QString &text) {
    lastAction_ = text;
    Q_EMIT lastActionChanged();
}

void ComposerStore::setSyncStatus(const QString &text) {
    syncStatus_ = text;
    Q_EMIT syncStatusChanged();
}

void ComposerStore::setIsSyncing(bool syncing) {
    isSyncing_ = syncing;
    Q_EMIT isSyncingChanged();
}

// ---- Content operations ----------------------------------------------------------------

void ComposerStore::applyPreset(PresetKind kind) {
    setActivePreset(kind);
    setActiveCustomPresetID(std::nullopt);
    setCustomPresetDraftName(QString());
    MailComposerData copy = data_;
    copy.applyPreset(kind);
    setData(copy);
    regenerate();
    persist();
    setLastAction(presetTitle(kind) + QStringLiteral(" charge."));
}

void ComposerStore::applyPresetById(const QString &id) {
    if (const std::optional<PresetKind> kind = presetKindFromId(id))
        applyPreset(*kind);
}

void ComposerStore::resetToDefault() {
    setActivePreset(PresetKind::Devis);
    setActiveCustomPresetID(std::nullopt);
    setCustomPresetDraftName(QString());
    setData(MailComposerData::defaultRecord());
    regenerate();
    persist();
    setLastAction(QStringLiteral("Nouveau message."));
}

// ---- Derived texts ---------------------------------------------------------------------

QString ComposerStore::previewRecipientName() const {
    const QString name = text::trimmed(data_.recipientName);
    return name.isEmpty() ? QStringLiteral("Client") : name;
}

QString ComposerStore::previewRecipientEmail() const {
    const QString email = text::trimmed(data_.recipientEmail);
    return email.isEmpty() ? QStringLiteral("email non renseigne") : email;
}

QString ComposerStore::appleConnectionStatusText() const {
    return platformMailAppTexts().connectionStatus;
}

QString ComposerStore::appleConnectionHintText() const {
    return platformMailAppTexts().connectionHint;
}

QVariantList ComposerStore::checklistRows() const {
    QVariantList rows;
    rows.reserve(currentChecklist_.size());
    for (const ChecklistItem &item : currentChecklist_)
        rows.append(
            QVariantMap{{QStringLiteral("ok"), item.ok}, {QStringLiteral("text"), item.text}});
    return rows;
}

} // namespace velino
