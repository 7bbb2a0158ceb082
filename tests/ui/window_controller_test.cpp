#include "window_controller.h"

#include "qt_services.h"
#include "qt_state_storage.h"
#include "service_host.h"

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

TEST(WindowController, WebInterfaceOnTheServiceHost) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const auto urls = std::make_shared<RecordingUrlOpener>();
    velino::StoreServices services = velino::StoreServices::qtDefaults();
    services.storage = std::make_shared<velino::QtStateStorage>(
        velino::StateFiles::inFolders(dir.path(), dir.path()));
    services.urls = urls;
    velino::ui::WindowController controller(std::move(services));
    const auto subtitle = [](const QString &host) {
        return u"Relie cette app a l'interface privee %1/velino.html."_s.arg(host);
    };
    qunsetenv("VELINO_SERVICE_HOST");
    EXPECT_EQ(controller.syncSubtitle(), subtitle(velino::defaultServiceHost()));

    qputenv("VELINO_SERVICE_HOST", "atelier.test:8443");
    EXPECT_EQ(controller.serviceHost(), u"atelier.test:8443"_s);
    EXPECT_EQ(controller.syncSubtitle(), subtitle(u"atelier.test:8443"_s));
    const QUrl page(u"https://atelier.test:8443/velino.html"_s);
    EXPECT_EQ(controller.webInterfaceUrl(), page);
    EXPECT_TRUE(controller.openWebInterface());
    EXPECT_EQ(urls->opened, QList<QUrl>{page});
    qunsetenv("VELINO_SERVICE_HOST");
}
