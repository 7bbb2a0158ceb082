#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// The edit menu's four commands, sent to whichever text field or editor of the window
// has the keyboard focus, like a first responder. Opening a menu moves the focus into a
// popup for a moment: items inside popups and the menu bar are passed over, so a command
// chosen with the mouse still reaches the field that had the focus before. Inside the
// e-mail preview the command goes to the web view (copying or selecting the page's text).
// When the focused item is neither the command does nothing.
class EditCommands : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickWindow *window READ window WRITE setWindow NOTIFY windowChanged)
    Q_PROPERTY(QQuickItem *target READ target NOTIFY targetChanged)

public:
    explicit EditCommands(QObject *parent = nullptr);

    QQuickWindow *window() const { return m_window; }
    void setWindow(QQuickWindow *window);
    // The item the commands act on now, or null.
    QQuickItem *target() const;

    // Each returns whether a text control or the web view performed the command.
    Q_INVOKABLE bool cut();
    Q_INVOKABLE bool copy();
    Q_INVOKABLE bool paste();
    Q_INVOKABLE bool selectAll();

    // Whether the item is inside a popup, the popup layer or a menu bar.
    static bool isTransient(const QQuickItem *item);
    // Whether the item is a text control that has the method "name()".
    static bool canPerform(const QQuickItem *item, const char *signature);
    // The web view the item belongs to (itself or an ancestor), or null.
    static QQuickItem *enclosingWebView(QQuickItem *item);

Q_SIGNALS:
    void windowChanged();
    void targetChanged();

private:
    void onActiveFocusItemChanged();
    bool perform(const char *name, const char *signature, const char *webAction);

    QPointer<QQuickWindow> m_window;
    QMetaObject::Connection m_focusConnection;
    QPointer<QQuickItem> m_focusItem;
};

} // namespace velino::ui
