#include "qt_services.h"

#include "identifiers.h"
#include "settings_format.h"

#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLockFile>
#include <QMimeData>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace velino {
namespace {

// QSettings writes the new file through QSaveFile, which flushes its data to disk before
// renaming it over the old one; flushing the folder as well makes the rename itself
// survive a power cut right after the save.
bool flushFolderToDisk(const QString &filePath) {
#ifdef Q_OS_UNIX
    const QByteArray folder = QFile::encodeName(QFileInfo(filePath).absolutePath());
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool synced = ::fsync(fd) == 0;
    ::close(fd);
    return synced;
#else
    Q_UNUSED(filePath);
    return true;
#endif
}

// QSettings guards its file with "<file>.lock" and waits up to 30 seconds for a lock
// left behind by a process that died before writing the lock's content. Such a lock is
// cleared here first, once it is a second old, so a crash during a save never delays the
// next start by half a minute.
void clearAbandonedLock(const QString &settingsFile) {
    QLockFile lock(settingsFile + QStringLiteral(".lock"));
    lock.setStaleLockTime(1000);
    if (lock.tryLock(2500))
        lock.unlock();
}

} // namespace

QtSettingsStore::QtSettingsStore() : settings_(makeSettings()) {}

QtSettingsStore::QtSettingsStore(const QString &filePath)
    : filePath_(filePath), settings_(makeSettings()) {}

std::unique_ptr<QSettings> QtSettingsStore::makeSettings() const {
    std::unique_ptr<QSettings> settings =
        filePath_.isEmpty()
            ? std::make_unique<QSettings>(velinoSettingsFormat(), QSettings::UserScope,
                                          QStringLiteral("Korvel"), QStringLiteral("Velino"))
            : std::make_unique<QSettings>(filePath_, velinoSettingsFormat());
    clearAbandonedLock(settings->fileName());
    return settings;
}

std::optional<QByteArray> QtSettingsStore::readBytes(const QString &key) const {
    const QVariant value = settings_->value(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QString> QtSettingsStore::readText(const QString &key) const {
    const QVariant value = settings_->value(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

void QtSettingsStore::writeBytes(const QString &key, const QByteArray &value) {
    settings_->setValue(key, value);
}

void QtSettingsStore::writeText(const QString &key, const QString &value) {
    settings_->setValue(key, value);
}

bool QtSettingsStore::sync() {
    clearAbandonedLock(settings_->fileName());
    settings_->sync();
    if (settings_->status() == QSettings::NoError)
        return flushFolderToDisk(settings_->fileName());
    // QSettings keeps reporting its first error; a fresh instance on the same file lets the
    // next save try again. The values written so far are kept by Qt's shared file cache.
    settings_ = makeSettings();
    return false;
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
