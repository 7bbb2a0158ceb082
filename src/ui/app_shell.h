#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QQmlEngine;
class QJSEngine;

namespace velino::ui {

// Opens the application's windows. Each window is an independent instance of the root
// view (Main.qml): its own lock state and its own composer store. A closed window keeps
// what was typed in it, then is destroyed.
class AppShell : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(int windowCount READ windowCount NOTIFY windowCountChanged)

public:
    static const QUrl kRootViewUrl;

    explicit AppShell(QQmlEngine *engine, QObject *parent = nullptr);
    ~AppShell() override;

    // The shell QML sees: the one the program made, else a new one for that engine.
    static AppShell *create(QQmlEngine *qmlEngine, QJSEngine *jsEngine);

    // Creates and shows a new window; null (with the QML errors logged) on failure.
    Q_INVOKABLE QQuickWindow *openWindow();

    int windowCount() const;
    QList<QQuickWindow *> windows() const;
    // The open windows in the order they were opened.
    Q_INVOKABLE QQuickWindow *windowAt(int index) const;

Q_SIGNALS:
    void windowCountChanged();

private:
    QQmlEngine *m_engine;
    QList<QPointer<QQuickWindow>> m_windows;
    QList<QPointer<QQuickWindow>> m_closing;
};

} // namespace velino::ui
