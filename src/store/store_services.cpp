#include "store_services.h"

#include "qt_services.h"
#include "qt_state_storage.h"
#include "service_host.h"

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
    void askSaveLocation(const QString &, const QString &, Answer answer) override {
        answer(std::nullopt);
    }
};

} // namespace

StoreServices StoreServices::qtDefaults() {
    StoreServices s;
    s.storage = std::make_shared<QtStateStorage>();
    s.clock = std::make_shared<SystemClock>();
    s.ids = std::make_shared<RandomIdGenerator>();
    s.alerts = std::make_shared<LoggedAlerts>();
    s.clipboard = std::make_shared<QtClipboard>();
    s.saveDialog = std::make_shared<CancelledSaveDialog>();
    s.files = std::make_shared<QtFileSystem>();
    s.urls = std::make_shared<DesktopUrlOpener>();
    s.programs = std::make_shared<QtProgramLauncher>();
    s.richText = std::make_shared<QtRichTextConverter>();
    s.makeMailExecutor = [](ProgramLauncher &launcher, FileSystem &files, IdGenerator &ids) {
        return makeMailAppExecutor(currentMailPlatform(), launcher, files, ids);
    };
    s.syncEndpoint = velino::syncEndpoint();
    return s;
}

} // namespace velino
