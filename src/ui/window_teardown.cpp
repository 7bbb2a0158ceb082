#include "window_teardown.h"

#include "composer_store.h"
#include "window_controller.h"

#include <QAccessible>
#include <QQuickWindow>

namespace velino::ui {

namespace {
void dropAccessibilityUpdate(QAccessibleEvent *) {}
} // namespace

void savePendingChanges(QQuickWindow *window) {
    if (auto *controller = window->findChild<WindowController *>())
        controller->store()->savePendingChanges();
}

void destroyClosedWindow(QQuickWindow *window) {
    const QAccessible::UpdateHandler previous =
        QAccessible::installUpdateHandler(dropAccessibilityUpdate);
    delete window;
    QAccessible::installUpdateHandler(previous);
}

} // namespace velino::ui
