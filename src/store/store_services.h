#pragma once

#include "platform_services.h"

#include <memory>

namespace velino {

// The platform services one store works with. Every member is set; qtDefaults() gives the
// Qt implementations, with alerts written to the log and the save dialog cancelled until
// the window provides its own.
struct StoreServices {
    std::shared_ptr<SettingsStore> settings;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<IdGenerator> ids;
    std::shared_ptr<AlertPresenter> alerts;
    std::shared_ptr<Clipboard> clipboard;
    std::shared_ptr<SaveDialog> saveDialog;
    std::shared_ptr<FileSystem> files;
    std::shared_ptr<UrlOpener> urls;
    std::shared_ptr<ProgramLauncher> programs;

    static StoreServices qtDefaults();
};

} // namespace velino
