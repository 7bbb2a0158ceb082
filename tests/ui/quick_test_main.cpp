#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest/quicktest.h>
#include <QtWebEngineQuick/qtwebenginequickglobal.h>

Q_IMPORT_QML_PLUGIN(VelinoPlugin)

namespace {

class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine *engine) {
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
    }
};

} // namespace

int main(int argc, char **argv) {
    // As in the program: the web engine is set up before the application object, which
    // quick_test_main creates.
    QtWebEngineQuick::initialize();
    Setup setup;
    return quick_test_main_with_setup(argc, argv, "velino_qml", nullptr, &setup);
}

#include "quick_test_main.moc"
