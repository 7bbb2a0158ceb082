#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velino::ui {

// The password gate of one window. Plain view state: it lives as long as the window and
// is never saved; every window starts locked.
class LockState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)
    Q_PROPERTY(bool isUnlocked READ isUnlocked NOTIFY isUnlockedChanged)

public:
    // The workshop password, compared exactly (case, spaces and line breaks count).
    static const QString kPassword;
    static const QString kWrongPasswordText;

    explicit LockState(QObject *parent = nullptr);

    QString password() const { return m_password; }
    void setPassword(const QString &password);
    QString errorText() const { return m_errorText; }
    bool isUnlocked() const { return m_isUnlocked; }

    // One attempt with the current password: the field is emptied either way; a wrong
    // password shows the error line, the right one clears it and unlocks. There is no
    // attempt counter and no delay.
    Q_INVOKABLE void unlock();

Q_SIGNALS:
    void passwordChanged();
    void errorTextChanged();
    void isUnlockedChanged();

private:
    void setErrorText(const QString &text);

    QString m_password;
    QString m_errorText;
    bool m_isUnlocked = false;
};

} // namespace velino::ui
