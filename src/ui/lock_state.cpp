#include "lock_state.h"

namespace velino::ui {

const QString LockState::kPassword = QStringLiteral("Falcon77!");
const QString LockState::kWrongPasswordText = QStringLiteral("Mot de passe incorrect.");

LockState::LockState(QObject *parent) : QObject(parent) {}

void LockState::setPassword(const QString &password) {
    if (m_password == password)
        return;
    m_password = password;
    Q_EMIT passwordChanged();
}

void LockState::setErrorText(const QString &text) {
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged();
}

void LockState::unlock() {
    const bool matches = m_password == kPassword;
    setPassword(QString());
    if (!matches) {
        setErrorText(kWrongPasswordText);
        return;
    }
    setErrorText(QString());
    if (!m_isUnlocked) {
        m_isUnlocked = true;
        Q_EMIT isUnlockedChanged();
    }
}

} // namespace velino::ui
