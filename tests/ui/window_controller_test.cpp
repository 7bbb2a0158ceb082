#include "window_controller.h"

#include "qt_services.h"
#include "qt_state_storage.h"
#include "service_host.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using velino::ui::WindowController;

namespace {

class RecordingUrlOpener final : public velino::UrlOpener {
public:
    bool openUrl(const QUrl &url) override {
        opened.append(url);
        return true;
    }
    QList<QUrl> opened;
};

// A controller whose store keeps its state in a temporary folder and opens no URL.
class WindowControllerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        qunsetenv("VELINO_SERVICE_HOST");
    }
    void TearDown() override { qunsetenv("VELINO_SERVICE_HOST"); }

    std::unique_ptr<WindowController> makeController() {
        velino::StoreServices services = velino::StoreServices::qtDefaults();
        services.storage = std::make_shared<velino::QtStateStorage>(
            velino::StateFiles::inFolders(dir.path(), dir.path()));
        services.urls = urls;
        return std::make_unique<WindowController>(std::move(services));
    }

    QTemporaryDir dir;
    std::shared_ptr<RecordingUrlOpener> urls = std::make_shared<RecordingUrlOpener>();
};

} // namespace

TEST_F(WindowControllerTest, WebInterfaceOnTheServiceHost) {
    EXPECT_EQ(makeController()->serviceHost(), velino::serviceHost());
    EXPECT_EQ(makeController()->syncSubtitle(),
              QStringLiteral("Relie cette app a l'interface privee ") +
                  velino::defaultServiceHost() + QStringLiteral("/velino.html."));

    qputenv("VELINO_SERVICE_HOST", "atelier.test:8443");
    const auto controller = makeController();
    EXPECT_EQ(controller->serviceHost(), QStringLiteral("atelier.test:8443"));
    EXPECT_EQ(
        controller->syncSubtitle(),
        QStringLiteral("Relie cette app a l'interface privee atelier.test:8443/velino.html."));
    EXPECT_EQ(controller->webInterfaceUrl(),
              QUrl(QStringLiteral("https://atelier.test:8443/velino.html")));
    EXPECT_TRUE(controller->openWebInterface());
    EXPECT_EQ(urls->opened,
              QList<QUrl>{QUrl(QStringLiteral("https://atelier.test:8443/velino.html"))});
}
