#include "edit_commands.h"

#include <QMetaEnum>
#include <QMetaMethod>

namespace velino::ui {

namespace {

// Runs the web view's `triggerWebAction` with the action named `action` of its WebAction
// enumeration (looked up by name: the web engine's QML types have no public C++ header).
bool triggerWebAction(QQuickItem *view, const char *action) {
    const QMetaObject *meta = view->metaObject();
    const int enumIndex = meta->indexOfEnumerator("WebAction");
    if (enumIndex < 0)
        return false;
    bool known = false;
    const int value = meta->enumerator(enumIndex).keyToValue(action, &known);
    if (!known)
        return false;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.name() == "triggerWebAction" && method.parameterCount() == 1)
            return method.invoke(view, Qt::DirectConnection,
                                 QGenericArgument(method.parameterTypeName(0).constData(), &value));
    }
    return false;
}

} // namespace

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

QQuickItem *EditCommands::enclosingWebView(QQuickItem *item) {
    for (QQuickItem *it = item; it; it = it->parentItem()) {
        if (it->inherits("QQuickWebEngineView"))
            return it;
    }
    return nullptr;
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

bool EditCommands::perform(const char *name, const char *signature, const char *webAction) {
    QQuickItem *item = m_focusItem.data();
    if (!item || !item->isVisible() || !item->isEnabled())
        return false;
    if (canPerform(item, signature))
        return QMetaObject::invokeMethod(item, name);
    QQuickItem *webView = enclosingWebView(item);
    return webView && webView->isVisible() && triggerWebAction(webView, webAction);
}

bool EditCommands::cut() {
    return perform("cut", "cut()", "Cut");
}
bool EditCommands::copy() {
    return perform("copy", "copy()", "Copy");
}
bool EditCommands::paste() {
    return perform("paste", "paste()", "Paste");
}
bool EditCommands::selectAll() {
    return perform("selectAll", "selectAll()", "SelectAll");
}

} // namespace velino::ui
