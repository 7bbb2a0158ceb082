#pragma once

#include "platform_services.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace velino::ui {

// The modal dialogs one window shows on behalf of its store: the warning alerts and the
// export's save dialog. Nothing waits on them: a warning is queued and the call returns;
// the save dialog is opened and answers the store through a callback once the user has
// chosen. Warnings that arrive while one is shown stack: the newest is shown first, then
// the one below it again.
//
// The file dialog itself is the platform's (QtQuick.Dialogs FileDialog in the window).
// It is asked not to confirm a replacement; this class asks instead, once, in the
// window's own alert, so that the question is asked on every platform and only once.
class WindowDialogs : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("WindowDialogs belong to a WindowController.")
    Q_PROPERTY(bool alertVisible READ alertVisible NOTIFY alertChanged)
    Q_PROPERTY(QString alertTitle READ alertTitle CONSTANT)
    Q_PROPERTY(QString alertText READ alertText NOTIFY alertChanged)
    Q_PROPERTY(QString alertButtonText READ alertButtonText CONSTANT)
    Q_PROPERTY(int pendingAlertCount READ pendingAlertCount NOTIFY alertChanged)
    Q_PROPERTY(bool saveRequested READ saveRequested NOTIFY saveChanged)
    Q_PROPERTY(QString saveTitle READ saveTitle NOTIFY saveChanged)
    Q_PROPERTY(QUrl saveFolder READ saveFolder NOTIFY saveChanged)
    Q_PROPERTY(QUrl suggestedFile READ suggestedFile NOTIFY saveChanged)
    Q_PROPERTY(bool replaceQuestionVisible READ replaceQuestionVisible NOTIFY saveChanged)
    Q_PROPERTY(QString replaceQuestionText READ replaceQuestionText NOTIFY saveChanged)
    Q_PROPERTY(bool isModal READ isModal NOTIFY isModalChanged)

public:
    explicit WindowDialogs(QObject *parent = nullptr);
    ~WindowDialogs() override;

    // Shows the warning titled "Velino" on top of the others and returns at once.
    void showWarning(const QString &informativeText);
    // Closes the alert on top (the newest).
    Q_INVOKABLE void dismissAlert();

    // Opens the save dialog in startFolder() with `suggestedName` and returns at once;
    // `answer` gets the chosen path (".html" added when the name has no HTML extension)
    // or nothing. A request while one is open is answered "nothing" at once.
    void requestSaveLocation(const QString &title, const QString &suggestedName,
                             SaveDialog::Answer answer);
    // The dialog's answers: the file chosen (asks about replacing an existing file
    // first), or cancel.
    Q_INVOKABLE void chooseSaveFile(const QUrl &file);
    Q_INVOKABLE void cancelSave();
    // The replacement question's answers.
    Q_INVOKABLE void confirmReplace();
    Q_INVOKABLE void declineReplace();

    bool alertVisible() const { return !m_alerts.isEmpty(); }
    QString alertTitle() const;
    QString alertText() const;
    QString alertButtonText() const;
    int pendingAlertCount() const { return int(m_alerts.size()); }
    bool saveRequested() const { return bool(m_saveAnswer) && m_replacePath.isEmpty(); }
    QString saveTitle() const { return m_saveTitle; }
    QUrl saveFolder() const { return QUrl::fromLocalFile(m_saveFolder); }
    QUrl suggestedFile() const;
    bool replaceQuestionVisible() const { return !m_replacePath.isEmpty(); }
    QString replaceQuestionText() const;
    bool isModal() const { return alertVisible() || bool(m_saveAnswer); }

    // The folder the dialog opens in: the last folder saved to, else Documents when it
    // exists, else the home folder.
    QString startFolder() const;
    // The path a chosen file name stands for: ".html" added unless it ends in ".html"
    // or ".htm" (any case).
    static QString withHtmlExtension(const QString &path);

    // The store's view of these dialogs. They hold the dialogs weakly: once the window is
    // gone, a warning is dropped and the save dialog answers "nothing".
    std::shared_ptr<AlertPresenter> alertPresenter();
    std::shared_ptr<SaveDialog> saveDialog();

Q_SIGNALS:
    void alertChanged();
    void saveChanged();
    void isModalChanged();

private:
    void finishSave(const std::optional<QString> &path);
    void notifyModal(bool wasModal);

    QList<QString> m_alerts;
    SaveDialog::Answer m_saveAnswer;
    QString m_saveTitle;
    QString m_saveFolder;
    QString m_suggestedName;
    QString m_lastFolder;
    QString m_replacePath;
};

} // namespace velino::ui
