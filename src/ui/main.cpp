#include "launch.h"

#include <QGuiApplication>
#include <QIcon>
#include <QtQml/qqmlextensionplugin.h>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

Q_IMPORT_QML_PLUGIN(VelinoPlugin)

int main(int argc, char *argv[]) {
    // The web engine shares OpenGL contexts with Qt Quick: set up before the application.
    QtWebEngineQuick::initialize();
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Korvel"));
    QGuiApplication::setApplicationName(QStringLiteral("Velino"));
    QGuiApplication::setApplicationVersion(QStringLiteral(VELINO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("velino"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/velino/VelinoLogo.png")));
    return velino::ui::runApplication(app);
}
