#pragma once

#include "platform_services.h"
#include "save_panel.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <memory>

class QEventLoop;

namespace velino::ui {

// The modal dialogs one window shows on behalf of its store: the warning alert and the
// export save panel.
//
// The store calls them synchronously and expects a modal answer (a warning returns once
// it has been read; the save panel returns a path or nothing). Each call therefore runs a
// local event loop until the window's QML dialog is answered: the window keeps painting and
// handles input, while the dialog, being modal, takes all of it. Nested calls (a sync
// failure arriving while another alert is open) stack: the newest alert is shown and
// answered first, then the one below it is shown again. The window refuses to close while
// a dialog is pending (isModal), so no caller is ever left waiting on a destroyed window.
class WindowDialogs : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("WindowDialogs belong to a WindowController.")
    Q_PROPERTY(bool alertVisible READ alertVisible NOTIFY alertChanged)
    Q_PROPERTY(QString alertTitle READ alertTitle CONSTANT)
    Q_PROPERTY(QString alertText READ alertText NOTIFY alertChanged)
    Q_PROPERTY(QString alertButtonText READ alertButtonText CONSTANT)
    Q_PROPERTY(int pendingAlertCount READ pendingAlertCount NOTIFY alertChanged)
    Q_PROPERTY(velino::ui::SavePanel *savePanel READ savePanel CONSTANT)
    Q_PROPERTY(bool isModal READ isModal NOTIFY isModalChanged)

public:
    explicit WindowDialogs(QObject *parent = nullptr);
    ~WindowDialogs() override;

    // Shows the warning titled "Velino" and returns once the user has dismissed it.
    void showWarning(const QString &informativeText);
    // Closes the alert on top (the newest).
    Q_INVOKABLE void dismissAlert();

    bool alertVisible() const { return !m_alerts.isEmpty(); }
    QString alertTitle() const;
    QString alertText() const;
    QString alertButtonText() const;
    int pendingAlertCount() const { return int(m_alerts.size()); }
    SavePanel *savePanel() const { return m_savePanel; }
    bool isModal() const { return alertVisible() || m_savePanel->isOpen(); }

    // The store's view of these dialogs. They hold the dialogs weakly: once the window is
    // gone, a warning returns at once and the save panel answers "cancelled".
    std::shared_ptr<AlertPresenter> alertPresenter();
    std::shared_ptr<SaveDialog> saveDialog();

Q_SIGNALS:
    void alertChanged();
    void isModalChanged();

private:
    struct PendingAlert {
        quint64 id = 0;
        QString text;
        QPointer<QEventLoop> loop;
    };

    void removeAlert(quint64 id);

    QList<PendingAlert> m_alerts;
    quint64 m_nextAlertId = 0;
    SavePanel *m_savePanel;
};

} // namespace velino::ui
