#include "launch.h"
#include "scene_graph_backend.h"

#include <QGuiApplication>
#include <QIcon>
#include <QtQml/qqmlextensionplugin.h>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

Q_IMPORT_QML_PLUGIN(VelinoPlugin)

int main(int argc, char *argv[]) {
    // Without it the e-mail preview is an empty box to screen readers; a value the user set
    // is kept. Read when the web engine starts.
    if (!qEnvironmentVariableIsSet("QTWEBENGINE_ENABLE_LINUX_ACCESSIBILITY"))
        qputenv("QTWEBENGINE_ENABLE_LINUX_ACCESSIBILITY", "1");
    // The web engine shares OpenGL contexts with Qt Quick: set up before the application.
    QtWebEngineQuick::initialize();
    velino::ui::chooseSceneGraphBackend();
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Korvel"));
    QGuiApplication::setApplicationName(QStringLiteral("Velino"));
    QGuiApplication::setApplicationVersion(QStringLiteral(VELINO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("velino"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/velino/VelinoLogo.png")));
    return velino::ui::runApplication(app);
}
