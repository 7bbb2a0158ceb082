#include "window_dialogs.h"

#include <QEventLoop>

namespace velino::ui {

namespace {

class WindowAlertPresenter final : public AlertPresenter {
public:
    explicit WindowAlertPresenter(WindowDialogs *dialogs) : m_dialogs(dialogs) {}

    void showWarning(const QString &informativeText) override {
        if (m_dialogs)
            m_dialogs->showWarning(informativeText);
    }

private:
    QPointer<WindowDialogs> m_dialogs;
};

class WindowSaveDialog final : public SaveDialog {
public:
    explicit WindowSaveDialog(WindowDialogs *dialogs) : m_dialogs(dialogs) {}

    std::optional<QString> askSaveLocation(const QString &title,
                                           const QString &suggestedName) override {
        if (!m_dialogs)
            return std::nullopt;
        return m_dialogs->savePanel()->run(title, suggestedName);
    }

private:
    QPointer<WindowDialogs> m_dialogs;
};

} // namespace

WindowDialogs::WindowDialogs(QObject *parent) : QObject(parent), m_savePanel(new SavePanel(this)) {
    connect(m_savePanel, &SavePanel::isOpenChanged, this, &WindowDialogs::isModalChanged);
}

WindowDialogs::~WindowDialogs() {
    for (const PendingAlert &alert : std::as_const(m_alerts)) {
        if (alert.loop)
            alert.loop->quit();
    }
}

QString WindowDialogs::alertTitle() const {
    return QStringLiteral("Velino");
}

QString WindowDialogs::alertText() const {
    return m_alerts.isEmpty() ? QString() : m_alerts.constLast().text;
}

QString WindowDialogs::alertButtonText() const {
    return QStringLiteral("OK");
}

void WindowDialogs::showWarning(const QString &informativeText) {
    QEventLoop loop;
    const quint64 id = ++m_nextAlertId;
    const bool wasModal = isModal();
    m_alerts.append({id, informativeText, &loop});
    Q_EMIT alertChanged();
    if (!wasModal)
        Q_EMIT isModalChanged();
    loop.exec();
    // Already gone when dismissed; still there when the loop ended for another reason
    // (the application quitting).
    removeAlert(id);
}

void WindowDialogs::dismissAlert() {
    if (m_alerts.isEmpty())
        return;
    const PendingAlert top = m_alerts.constLast();
    removeAlert(top.id);
    if (top.loop)
        top.loop->quit();
}

void WindowDialogs::removeAlert(quint64 id) {
    const auto it = std::find_if(m_alerts.begin(), m_alerts.end(),
                                 [id](const PendingAlert &alert) { return alert.id == id; });
    if (it == m_alerts.end())
        return;
    m_alerts.erase(it);
    Q_EMIT alertChanged();
    if (!isModal())
        Q_EMIT isModalChanged();
}

std::shared_ptr<AlertPresenter> WindowDialogs::alertPresenter() {
    return std::make_shared<WindowAlertPresenter>(this);
}

std::shared_ptr<SaveDialog> WindowDialogs::saveDialog() {
    return std::make_shared<WindowSaveDialog>(this);
}

} // namespace velino::ui
