#pragma once

#include "custom_mail_preset.h"
#include "detail_item.h"
#include "mail_composer_data.h"
#include "preset_kind.h"
#include "preset_names.h"
#include "store_services.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUuid>
#include <QVariantList>

#include <optional>

namespace velino {

struct SavedPayload;
struct VelinoError;
class MailBridge;
class SyncTransport;

// The one state object of a window: the content being edited, the preset selection and
// library, the outputs derived from the content, the status texts and the sync code.
//
// Every assignment of a published property is seen by its change pipeline before the new
// value is stored, including a value equal to the old one; the pipelines react only to
// assignments made after construction has bound them:
//   data                   180 ms after the last change: regenerate, then save
//   activePreset           at once: save
//   customPresetDraftName  180 ms after the last change: save
//   activeCustomPresetID   at once: save
//   syncCode               180 ms after the last change: remember the normalised code
// The debounce timers belong to the store, so nothing fires once it is destroyed: whoever
// closes the store's window calls savePendingChanges() first.
class ComposerStore : public QObject {
    Q_OBJECT

    Q_PROPERTY(velino::MailComposerData data READ data WRITE setData NOTIFY dataChanged)
    Q_PROPERTY(QString activePreset READ activePresetId NOTIFY activePresetChanged)
    Q_PROPERTY(QString customPresetDraftName READ customPresetDraftName WRITE
                   setCustomPresetDraftName NOTIFY customPresetDraftNameChanged)
    Q_PROPERTY(QVariantList customPresets READ customPresetRows NOTIFY customPresetsChanged)
    Q_PROPERTY(QString activeCustomPresetID READ activeCustomPresetIdText NOTIFY
                   activeCustomPresetIDChanged)
    Q_PROPERTY(QString generatedHTML READ generatedHTML NOTIFY generatedHTMLChanged)
    Q_PROPERTY(QString generatedText READ generatedText NOTIFY generatedTextChanged)
    Q_PROPERTY(QString generatedSubject READ generatedSubject NOTIFY generatedSubjectChanged)
    Q_PROPERTY(QVariantList currentChecklist READ checklistRows NOTIFY currentChecklistChanged)
    Q_PROPERTY(int currentDetailsCount READ currentDetailsCount NOTIFY currentDetailsCountChanged)
    Q_PROPERTY(
        QString currentFormatStatus READ currentFormatStatus NOTIFY currentFormatStatusChanged)
    Q_PROPERTY(QString saveStatus READ saveStatus NOTIFY saveStatusChanged)
    Q_PROPERTY(QString lastAction READ lastAction NOTIFY lastActionChanged)
    Q_PROPERTY(QString syncCode READ syncCode WRITE setSyncCode NOTIFY syncCodeChanged)
    Q_PROPERTY(QString syncStatus READ syncStatus NOTIFY syncStatusChanged)
    Q_PROPERTY(bool isSyncing READ isSyncing NOTIFY isSyncingChanged)

    Q_PROPERTY(QString previewRecipientName READ previewRecipientName NOTIFY dataChanged)
    Q_PROPERTY(QString previewRecipientEmail READ previewRecipientEmail NOTIFY dataChanged)
    Q_PROPERTY(QString activeCustomPresetName READ activeCustomPresetNameText NOTIFY
                   activeCustomPresetIDChanged)
    Q_PROPERTY(bool canSaveAsNewCustomPreset READ canSaveAsNewCustomPreset NOTIFY
                   customPresetDraftNameChanged)
    Q_PROPERTY(bool canUpdateActiveCustomPreset READ canUpdateActiveCustomPreset NOTIFY
                   activeCustomPresetIDChanged)
    Q_PROPERTY(QString appleConnectionStatusText READ appleConnectionStatusText CONSTANT)
    Q_PROPERTY(QString appleConnectionHintText READ appleConnectionHintText CONSTANT)

public:
    static constexpr int kDebounceMilliseconds = 180;
    static const QString kDefaultsKey; // "velino-native-v1", also the document's file name
    static const QString kSyncCodeKey; // "velino-sync-code-v1"

    // Loads the saved state (or the default state), binds the pipelines, regenerates the
    // outputs and saves once.
    explicit ComposerStore(StoreServices services, QObject *parent = nullptr);
    ~ComposerStore() override;

    const MailComposerData &data() const { return data_; }
    void setData(const MailComposerData &data);
    // Assigns data with one field replaced; unknown field names are ignored.
    Q_INVOKABLE void setDataField(const QString &field, const QString &value);

    PresetKind activePreset() const { return activePreset_; }
    void setActivePreset(PresetKind kind);
    QString activePresetId() const { return presetId(activePreset_); }

    const QString &customPresetDraftName() const { return customPresetDraftName_; }
    void setCustomPresetDraftName(const QString &name);

    const QList<CustomMailPreset> &customPresets() const { return customPresets_; }
    const std::optional<QUuid> &activeCustomPresetID() const { return activeCustomPresetID_; }
    void setActiveCustomPresetID(const std::optional<QUuid> &id);

    const QString &generatedHTML() const { return generatedHTML_; }
    const QString &generatedText() const { return generatedText_; }
    const QString &generatedSubject() const { return generatedSubject_; }
    const QList<ChecklistItem> &currentChecklist() const { return currentChecklist_; }
    int currentDetailsCount() const { return currentDetailsCount_; }
    const QString &currentFormatStatus() const { return currentFormatStatus_; }
    const QString &saveStatus() const { return saveStatus_; }
    const QString &lastAction() const { return lastAction_; }
    const QString &syncCode() const { return syncCode_; }
    void setSyncCode(const QString &code);
    const QString &syncStatus() const { return syncStatus_; }
    bool isSyncing() const { return isSyncing_; }

    QString previewRecipientName() const;
    QString previewRecipientEmail() const;
    QString appleConnectionStatusText() const;
    QString appleConnectionHintText() const;

    // Does at once what the pending debounces would have done (save, remember the sync
    // code), so that an edit made just before the window closes is kept.
    void savePendingChanges();

    // Built-in presets and reset.
    void applyPreset(PresetKind kind);
    Q_INVOKABLE void applyPresetById(const QString &id);
    Q_INVOKABLE void resetToDefault();

    // Saved-preset library.
    Q_INVOKABLE void saveAsNewCustomPreset();
    Q_INVOKABLE void updateActiveCustomPreset();
    // The preset is taken by value: callers may pass an entry of customPresets(), which the
    // operation replaces.
    void overwriteCustomPreset(CustomMailPreset preset);
    void loadCustomPreset(CustomMailPreset preset);
    void deleteCustomPreset(CustomMailPreset preset);
    Q_INVOKABLE void overwriteCustomPresetById(const QString &id);
    Q_INVOKABLE void loadCustomPresetById(const QString &id);
    Q_INVOKABLE void deleteCustomPresetById(const QString &id);
    bool isCustomPresetActive(const CustomMailPreset &preset) const;
    std::optional<QString> activeCustomPresetName() const;
    bool canSaveAsNewCustomPreset() const;
    bool canUpdateActiveCustomPreset() const;

    // Output actions: each regenerates and saves first, then acts and reports in lastAction
    // (or in an alert when it fails).
    Q_INVOKABLE void copySubject();
    Q_INVOKABLE void copyPlainText();
    Q_INVOKABLE void copyHTML();
    Q_INVOKABLE void exportHTML();
    Q_INVOKABLE void openStandalonePreview();
    Q_INVOKABLE void openAppleMailDraft();

    // Phone sync: asynchronous; isSyncing is true until the answer has been handled.
    Q_INVOKABLE void pushToWeb();
    Q_INVOKABLE void pullFromWeb();

Q_SIGNALS:
    void dataChanged();
    void activePresetChanged();
    void customPresetDraftNameChanged();
    void customPresetsChanged();
    void activeCustomPresetIDChanged();
    void generatedHTMLChanged();
    void generatedTextChanged();
    void generatedSubjectChanged();
    void currentChecklistChanged();
    void currentDetailsCountChanged();
    void currentFormatStatusChanged();
    void saveStatusChanged();
    void lastActionChanged();
    void syncCodeChanged();
    void syncStatusChanged();
    void isSyncingChanged();

protected:
    const StoreServices &services() const { return services_; }

    // Brings every output up to date with data.
    void regenerate();
    // Saves the whole state as the saved document and reports in saveStatus.
    void persist();

    void setLastAction(const QString &text);
    void setSyncStatus(const QString &text);
    void setIsSyncing(bool syncing);

private:
    // Output actions' helpers.
    void copyRichHTMLToPasteboard();
    void writeExport(const std::optional<QString> &location, const QString &html);

    // Sync helpers.
    std::optional<QString> validatedSyncCode();
    void failSync(const VelinoError &error);

    void loadSavedState();
    void takeDefaultState();
    void takeSavedState(SavedPayload &&payload);
    void bind();
    void setCustomPresets(QList<CustomMailPreset> presets);
    void setSaveStatus(const QString &text);
    const CustomMailPreset *findCustomPreset(const QString &idText) const;

    QString activeCustomPresetIdText() const;
    QString activeCustomPresetNameText() const;
    QVariantList customPresetRows() const;
    QVariantList checklistRows() const;

    StoreServices services_;

    MailComposerData data_;
    PresetKind activePreset_ = PresetKind::Devis;
    QString customPresetDraftName_;
    QList<CustomMailPreset> customPresets_;
    std::optional<QUuid> activeCustomPresetID_;
    QString generatedHTML_;
    QString generatedText_;
    QString generatedSubject_;
    QList<ChecklistItem> currentChecklist_;
    int currentDetailsCount_ = 0;
    QString currentFormatStatus_;
    QString saveStatus_;
    QString lastAction_;
    QString syncCode_;
    QString syncStatus_;
    bool isSyncing_ = false;

    std::unique_ptr<MailBridge> mailBridge_;
    std::unique_ptr<SyncTransport> syncTransport_;

    bool isBootstrapping_ = true;
    bool pipelinesBound_ = false;
    QTimer dataDebounce_;
    QTimer draftNameDebounce_;
    QTimer syncCodeDebounce_;
};

} // namespace velino
