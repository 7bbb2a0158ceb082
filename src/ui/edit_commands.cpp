#include "edit_commands.h"

namespace velino::ui {

EditCommands::EditCommands(QObject *parent) : QObject(parent) {}

void EditCommands::setWindow(QQuickWindow *window) {
    if (m_window == window)
        return;
    if (m_focusConnection)
        disconnect(m_focusConnection);
    m_window = window;
    if (window) {
        m_focusConnection = connect(window, &QQuickWindow::activeFocusItemChanged, this,
                                    &EditCommands::onActiveFocusItemChanged);
    }
    Q_EMIT windowChanged();
    onActiveFocusItemChanged();
}

QQuickItem *EditCommands::target() const {
    return m_focusItem.data();
}

bool EditCommands::isTransient(const QQuickItem *item) {
    for (const QQuickItem *it = item; it; it = it->parentItem()) {
        if (it->inherits("QQuickPopupItem") || it->inherits("QQuickOverlay") ||
            it->inherits("QQuickMenuBar"))
            return true;
    }
    return false;
}

bool EditCommands::canPerform(const QQuickItem *item, const char *signature) {
    if (!item)
        return false;
    const QMetaObject *meta = item->metaObject();
    // Text inputs and editors have all four; other items with a method of the same name
    // are not text controls.
    return meta->indexOfMethod(signature) >= 0 && meta->indexOfMethod("selectAll()") >= 0 &&
           meta->indexOfProperty("selectedText") >= 0;
}

void EditCommands::onActiveFocusItemChanged() {
    QQuickItem *item = m_window ? m_window->activeFocusItem() : nullptr;
    if (item && isTransient(item))
        return;
    if (m_focusItem == item)
        return;
    m_focusItem = item;
    Q_EMIT targetChanged();
}

bool EditCommands::perform(const char *name, const char *signature) {
    QQuickItem *item = m_focusItem.data();
    if (!item || !item->isVisible() || !item->isEnabled() || !canPerform(item, signature))
        return false;
    return QMetaObject::invokeMethod(item, name);
}

bool EditCommands::cut() {
    return perform("cut", "cut()");
}
bool EditCommands::copy() {
    return perform("copy", "copy()");
}
bool EditCommands::paste() {
    return perform("paste", "paste()");
}
bool EditCommands::selectAll() {
    return perform("selectAll", "selectAll()");
}

} // namespace velino::ui
