#pragma once

#include "mail_app_executor.h"
#include "platform_services.h"
#include "rich_text_converter.h"

#include <QList>
#include <QSslCertificate>
#include <QUrl>

#include <chrono>

#include <functional>
#include <memory>

namespace velino {

// The platform services one store works with. Every member is set; qtDefaults() gives the
// Qt implementations, with alerts written to the log and the save dialog cancelled until
// the window provides its own.
struct StoreServices {
    std::shared_ptr<StateStorage> storage;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<IdGenerator> ids;
    std::shared_ptr<AlertPresenter> alerts;
    std::shared_ptr<Clipboard> clipboard;
    std::shared_ptr<SaveDialog> saveDialog;
    std::shared_ptr<FileSystem> files;
    std::shared_ptr<UrlOpener> urls;
    std::shared_ptr<ProgramLauncher> programs;
    std::shared_ptr<RichTextConverter> richText;

    // Builds the mail-application executor over the store's own services (the platform's
    // one by default; tests give a recording one).
    std::function<std::unique_ptr<MailAppExecutor>(ProgramLauncher &, FileSystem &, IdGenerator &)>
        makeMailExecutor;

    // The phone sync service: https://HOST/api/velino-sync.
    QUrl syncEndpoint;
    // Extra certificate authorities trusted for sync (tests); empty in the product.
    QList<QSslCertificate> extraSyncCaCertificates;
    // A request fails when its transfer makes no progress for this long.
    std::chrono::milliseconds syncTransferTimeout{60000};

    static StoreServices qtDefaults();
};

} // namespace velino
