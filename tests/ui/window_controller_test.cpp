#include "window_controller.h"

#include "qt_services.h"
#include "qt_state_storage.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class RecordingUrlOpener final : public velino::UrlOpener {
public:
    bool openUrl(const QUrl &url) override {
        opened.append(url);
        return true;
    }
    QList<QUrl> opened;
};

} // namespace

// The sync card's texts on that host: tst_MainWindow.
TEST(WindowController, OpensTheWebInterfaceOnTheServiceHost) {
    QTemporaryDir dir;
    const auto urls = std::make_shared<RecordingUrlOpener>();
    velino::StoreServices services = velino::StoreServices::qtDefaults();
    services.storage = std::make_shared<velino::QtStateStorage>(
        velino::StateFiles::inFolders(dir.path(), dir.path()));
    services.urls = urls;
    velino::ui::WindowController controller(std::move(services));
    qputenv("VELINO_SERVICE_HOST", "atelier.test:8443");
    EXPECT_TRUE(controller.openWebInterface());
    qunsetenv("VELINO_SERVICE_HOST");
    EXPECT_EQ(urls->opened, QList<QUrl>{QUrl(u"https://atelier.test:8443/velino.html"_s)});
}
