#include "app_shell.h"

#include "masked_text_accessibility.h"
#include "window_teardown.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlError>

namespace velino::ui {

namespace {
AppShell *g_programShell = nullptr;
}

const QUrl AppShell::kRootViewUrl(QStringLiteral("qrc:/qt/qml/Velino/Main.qml"));

AppShell::AppShell(QQmlEngine *engine, QObject *parent) : QObject(parent), m_engine(engine) {
    if (!g_programShell)
        g_programShell = this;
}

AppShell::~AppShell() {
    if (g_programShell == this)
        g_programShell = nullptr;
    for (const QPointer<QQuickWindow> &window : m_windows + m_closing) {
        if (!window)
            continue;
        savePendingChanges(window);
        destroyClosedWindow(window);
    }
}

AppShell *AppShell::create(QQmlEngine *qmlEngine, QJSEngine *) {
    if (g_programShell && g_programShell->m_engine == qmlEngine) {
        QJSEngine::setObjectOwnership(g_programShell, QJSEngine::CppOwnership);
        return g_programShell;
    }
    return new AppShell(qmlEngine);
}

QQuickWindow *AppShell::openWindow() {
    QQmlComponent component(m_engine, kRootViewUrl);
    // Qt Quick is loaded by now, its items not created yet.
    installMaskedTextAccessibility();
    QObject *object = component.create();
    if (!object) {
        const QList<QQmlError> errors = component.errors();
        for (const QQmlError &error : errors)
            qWarning().noquote() << error.toString();
        return nullptr;
    }
    auto *window = qobject_cast<QQuickWindow *>(object);
    if (!window) {
        qWarning("Main.qml does not describe a window");
        delete object;
        return nullptr;
    }
    QJSEngine::setObjectOwnership(window, QJSEngine::CppOwnership);
    m_windows.append(window);
    connect(window, &QQuickWindow::visibleChanged, this, [this, window](bool visible) {
        if (visible)
            return;
        m_windows.removeAll(window);
        savePendingChanges(window);
        // Not from inside the window's own signal: once back in the event loop. A window
        // still waiting for that when the shell goes is destroyed with it.
        m_closing.append(window);
        QMetaObject::invokeMethod(
            this,
            [this, guard = QPointer<QQuickWindow>(window)] {
                m_closing.removeAll(guard);
                if (guard)
                    destroyClosedWindow(guard);
            },
            Qt::QueuedConnection);
        Q_EMIT windowCountChanged();
    });
    window->show();
    window->requestActivate();
    Q_EMIT windowCountChanged();
    return window;
}

int AppShell::windowCount() const {
    return int(windows().size());
}

QList<QQuickWindow *> AppShell::windows() const {
    QList<QQuickWindow *> list;
    for (const QPointer<QQuickWindow> &window : m_windows) {
        if (window)
            list.append(window.data());
    }
    return list;
}

QQuickWindow *AppShell::windowAt(int index) const {
    const QList<QQuickWindow *> list = windows();
    return index >= 0 && index < list.size() ? list.at(index) : nullptr;
}

} // namespace velino::ui
