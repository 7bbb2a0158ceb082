#include "scene_graph_backend.h"

#include <QQuickWindow>
#include <QtGlobal>

namespace velino::ui {

void chooseSceneGraphBackend() {
    if (!qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND") ||
        !qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND"))
        return;
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // The web engine still makes an OpenGL context at start; on X11 this makes it fail
    // early (one warning in the log) instead of loading the driver.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
}

} // namespace velino::ui
