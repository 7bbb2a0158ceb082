#include "qt_services.h"

#include "identifiers.h"

#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace velino {

QtSettingsStore::QtSettingsStore()
    : settings_(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Korvel"),
                QStringLiteral("Velino")) {}

QtSettingsStore::QtSettingsStore(const QString &filePath)
    : settings_(filePath, QSettings::NativeFormat) {}

std::optional<QByteArray> QtSettingsStore::readBytes(const QString &key) const {
    const QVariant value = settings_.value(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString> QtSettingsStore::readText(const QString &key) const {
    const QVariant value = settings_.value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

void QtSettingsStore::writeBytes(const QString &key, const QByteArray &value) {
    settings_.setValue(key, value);
}

void QtSettingsStore::writeText(const QString &key, const QString &value) {
    settings_.setValue(key, value);
}

bool QtSettingsStore::sync() {
    settings_.sync();
    return settings_.status() == QSettings::NoError;
}

Instant SystemClock::now() const {
    return Instant::fromUnixMilliseconds(QDateTime::currentMSecsSinceEpoch());
}

QUuid RandomIdGenerator::newId() {
    return randomUuid();
}

void QtClipboard::setItem(const ClipboardItem &item) {
    auto *mime = new QMimeData;
    if (item.html)
        mime->setHtml(*item.html);
    if (item.rtf) {
        // The type macOS applications read, and the ones X11 and Wayland applications offer.
        mime->setData(QStringLiteral("text/rtf"), *item.rtf);
        mime->setData(QStringLiteral("text/richtext"), *item.rtf);
        mime->setData(QStringLiteral("application/rtf"), *item.rtf);
    }
    if (item.plainText)
        mime->setText(*item.plainText);
    QGuiApplication::clipboard()->setMimeData(mime); // the clipboard takes ownership
}

bool QtFileSystem::writeUtf8Atomically(const QString &path, const QString &text) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = text.toUtf8();
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QString QtFileSystem::temporaryDirectory() const {
    return QStandardPaths::writableLocation(QStandardPaths::TempLocation);
}

bool DesktopUrlOpener::openUrl(const QUrl &url) {
    return QDesktopServices::openUrl(url);
}

std::optional<QString> QtProgramLauncher::findProgram(const QString &name) const {
    const QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        return std::nullopt;
    return path;
}

ProgramLauncher::Result QtProgramLauncher::run(const QString &program, const QStringList &arguments,
                                               const QByteArray &standardInput) {
    QProcess process;
    process.start(program, arguments);
    Result result;
    if (!process.waitForStarted())
        return result;
    result.started = true;
    if (!standardInput.isEmpty())
        process.write(standardInput);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.standardOutput = process.readAllStandardOutput();
    result.standardError = process.readAllStandardError();
    return result;
}

bool QtProgramLauncher::startDetached(const QString &program, const QStringList &arguments) {
    return QProcess::startDetached(program, arguments);
}

} // namespace velino
