#include "window_dialogs.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>

#include <utility>

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

    void askSaveLocation(const QString &title, const QString &suggestedName,
                         Answer answer) override {
        if (!m_dialogs) {
            answer(std::nullopt);
            return;
        }
        m_dialogs->requestSaveLocation(title, suggestedName, std::move(answer));
    }

private:
    QPointer<WindowDialogs> m_dialogs;
};

} // namespace

WindowDialogs::WindowDialogs(QObject *parent) : QObject(parent) {}

WindowDialogs::~WindowDialogs() = default;

QString WindowDialogs::alertTitle() const {
    return QStringLiteral("Velino");
}

QString WindowDialogs::alertText() const {
    return m_alerts.isEmpty() ? QString() : m_alerts.constLast();
}

QString WindowDialogs::alertButtonText() const {
    return QStringLiteral("OK");
}

void WindowDialogs::notifyModal(bool wasModal) {
    if (wasModal != isModal())
        Q_EMIT isModalChanged();
}

void WindowDialogs::showWarning(const QString &informativeText) {
    const bool wasModal = isModal();
    m_alerts.append(informativeText);
    Q_EMIT alertChanged();
    notifyModal(wasModal);
}

void WindowDialogs::dismissAlert() {
    if (m_alerts.isEmpty())
        return;
    const bool wasModal = isModal();
    m_alerts.removeLast();
    Q_EMIT alertChanged();
    notifyModal(wasModal);
}

void WindowDialogs::requestSaveLocation(const QString &title, const QString &suggestedName,
                                        SaveDialog::Answer answer) {
    if (m_saveAnswer) {
        answer(std::nullopt);
        return;
    }
    const bool wasModal = isModal();
    m_saveAnswer = std::move(answer);
    m_saveTitle = title;
    m_saveFolder = startFolder();
    m_suggestedName = suggestedName;
    Q_EMIT saveChanged();
    notifyModal(wasModal);
}

QUrl WindowDialogs::suggestedFile() const {
    if (m_suggestedName.isEmpty())
        return {};
    return QUrl::fromLocalFile(QDir(m_saveFolder).filePath(m_suggestedName));
}

QString WindowDialogs::withHtmlExtension(const QString &path) {
    if (path.endsWith(QStringLiteral(".html"), Qt::CaseInsensitive) ||
        path.endsWith(QStringLiteral(".htm"), Qt::CaseInsensitive))
        return path;
    return path + QStringLiteral(".html");
}

void WindowDialogs::chooseSaveFile(const QUrl &file) {
    if (!m_saveAnswer || !m_replacePath.isEmpty())
        return;
    // Qt Quick's own dialog answers a typed name as a bare path read as an address, so that
    // "#" or "?" in the name start its fragment or query: the whole text is the path.
    const QString chosen = file.isLocalFile()        ? file.toLocalFile()
                           : file.scheme().isEmpty() ? file.toString()
                                                     : QString();
    if (!QDir::isAbsolutePath(chosen)) {
        finishSave(std::nullopt);
        return;
    }
    const QString path = withHtmlExtension(QDir::cleanPath(chosen));
    if (QFileInfo::exists(path)) {
        m_replacePath = path;
        Q_EMIT saveChanged();
        return;
    }
    finishSave(path);
}

void WindowDialogs::cancelSave() {
    if (m_saveAnswer && m_replacePath.isEmpty())
        finishSave(std::nullopt);
}

QString WindowDialogs::replaceQuestionText() const {
    if (m_replacePath.isEmpty())
        return {};
    return QStringLiteral("Un fichier nomme \"") + QFileInfo(m_replacePath).fileName() +
           QStringLiteral("\" existe deja. Le remplacer ?");
}

void WindowDialogs::confirmReplace() {
    if (!m_replacePath.isEmpty())
        finishSave(m_replacePath);
}

void WindowDialogs::declineReplace() {
    if (m_replacePath.isEmpty())
        return;
    // Back to the file dialog, as a native one does when its question is declined.
    m_replacePath.clear();
    Q_EMIT saveChanged();
}

void WindowDialogs::finishSave(const std::optional<QString> &path) {
    const bool wasModal = isModal();
    SaveDialog::Answer answer = std::exchange(m_saveAnswer, nullptr);
    m_replacePath.clear();
    if (path)
        m_lastFolder = QFileInfo(*path).absolutePath();
    Q_EMIT saveChanged();
    notifyModal(wasModal);
    if (answer)
        answer(path);
}

QString WindowDialogs::startFolder() const {
    if (!m_lastFolder.isEmpty() && QFileInfo(m_lastFolder).isDir())
        return m_lastFolder;
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!documents.isEmpty() && QFileInfo(documents).isDir())
        return documents;
    return QDir::homePath();
}

std::shared_ptr<AlertPresenter> WindowDialogs::alertPresenter() {
    return std::make_shared<WindowAlertPresenter>(this);
}

std::shared_ptr<SaveDialog> WindowDialogs::saveDialog() {
    return std::make_shared<WindowSaveDialog>(this);
}

} // namespace velino::ui
