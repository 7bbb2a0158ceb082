#include "composer_store.h"

#include "sync_client.h"
#include "sync_transport.h"
#include "velino_error.h"

#include <QPointer>

#include <memory>

// Push to and pull from the phone web interface.
//
// Each operation checks the code and updates the status on the main thread, then hands one
// request to the store's transport and returns; the answer is handled later, from the event
// loop, still on the main thread. The transport belongs to the store: destroying the store
// drops the requests under way without calling them back.
namespace velino {

void ComposerStore::pushToWeb() {
    const std::optional<QString> code = validatedSyncCode();
    if (!code)
        return;
    setIsSyncing(true);
    setSyncStatus(synctext::pushing());
    regenerate();
    persist();

    // What leaves is the state at this moment; edits made while the request runs stay here.
    const QByteArray body = syncUploadBody(*code, activePreset_, data_, services().clock->now());
    // The answer comes back through the store's own transport, so it cannot outlive the
    // store; the guard keeps that true should the transport ever change hands.
    const QPointer<ComposerStore> self(this);
    const auto onAnswer = [self](const SyncTransportResult &result) {
        if (!self)
            return;
        VelinoError error;
        const std::optional<QString> updatedAt = syncUploadOutcome(result, &error);
        if (!updatedAt) {
            self->failSync(error);
            return;
        }
        self->setSyncStatus(synctext::pushSucceeded(*updatedAt));
        self->setLastAction(synctext::pushDone());
        self->setIsSyncing(false);
    };
    syncTransport_->put(services().syncEndpoint, body, onAnswer);
}

void ComposerStore::pullFromWeb() {
    const std::optional<QString> code = validatedSyncCode();
    if (!code)
        return;
    setIsSyncing(true);
    setSyncStatus(synctext::pulling());

    const QPointer<ComposerStore> self(this);
    const auto onAnswer = [self](const SyncTransportResult &result) {
        if (!self)
            return;
        VelinoError error;
        const std::optional<SyncDownload> download = syncDownloadOutcome(result, &error);
        if (!download) {
            self->failSync(error);
            return;
        }
        // Only the built-in preset and the content come from the phone; the saved presets,
        // the active one and the draft name stay as they are.
        self->setActivePreset(download->activePreset);
        self->setData(download->data);
        self->regenerate();
        self->persist();
        self->setSyncStatus(synctext::pullSucceeded(download->updatedAt));
        self->setLastAction(synctext::pullDone());
        self->setIsSyncing(false);
    };
    syncTransport_->get(services().syncEndpoint, *code, onAnswer);
}

std::optional<QString> ComposerStore::validatedSyncCode() {
    const QString code = normalizedSyncCode(syncCode_);
    // Written back even when too short, so that the field shows what would be sent.
    setSyncCode(code);
    if (isSyncCodeLongEnough(code)) {
        services().storage->writeSyncCode(code);
        return code;
    }
    setSyncStatus(synctext::codeTooShort());
    services().alerts->showWarning(synctext::codeTooShort());
    return std::nullopt;
}

void ComposerStore::failSync(const VelinoError &error) {
    setSyncStatus(error.description);
    // The alert is modal: the window may be closed, and the store destroyed, before it
    // returns. The presenter is kept alive by this copy.
    const std::shared_ptr<AlertPresenter> alerts = services().alerts;
    const QPointer<ComposerStore> self(this);
    alerts->showWarning(error.description);
    if (self)
        setIsSyncing(false);
}

} // namespace velino
