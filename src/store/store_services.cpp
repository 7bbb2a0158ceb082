#include "store_services.h"

#include "qt_services.h"

#include <QDebug>

namespace velino {
namespace {

class LoggedAlerts final : public AlertPresenter {
public:
    void showWarning(const QString &informativeText) override {
        qWarning().noquote() << "Velino :" << informativeText;
    }
};

class CancelledSaveDialog final : public SaveDialog {
public:
    std::optional<QString> askSaveLocation(const QString &, const QString &) override {
        return std::nullopt;
    }
};

} // namespace

StoreServices StoreServices::qtDefaults() {
    return {std::make_shared<QtSettingsStore>(),   std::make_shared<SystemClock>(),
            std::make_shared<RandomIdGenerator>(), std::make_shared<LoggedAlerts>(),
            std::make_shared<QtClipboard>(),       std::make_shared<CancelledSaveDialog>(),
            std::make_shared<QtFileSystem>(),      std::make_shared<DesktopUrlOpener>(),
            std::make_shared<QtProgramLauncher>()};
}

} // namespace velino
