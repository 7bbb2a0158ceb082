#include "qt_services.h"

#include "identifiers.h"
#include "private_files.h"

#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace velino {
namespace {

#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
bool openWithXdgOpen(const QString &xdgOpen, const QUrl &url) {
    auto *process = new QProcess;
    process->setProgram(xdgOpen);
    process->setArguments({QString::fromUtf8(url.toEncoded())});
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start();
    if (!process->waitForStarted()) {
        delete process;
        return false;
    }
    if (!process->waitForFinished(DesktopUrlOpener::kXdgOpenWaitMilliseconds)) {
        // Deleting the QProcess would kill xdg-open, and with it a handler still starting.
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        return true;
    }
    const bool opened = process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0;
    delete process;
    return opened;
}
#endif

} // namespace

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

QtFileSystem::QtFileSystem() : folder_(perUserPrivateFolder()) {}

QtFileSystem::QtFileSystem(QString privateFolder) : folder_(std::move(privateFolder)) {}

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

QString QtFileSystem::privateFolder() {
    return makePrivateFolder(folder_) ? folder_ : QString();
}

bool QtFileSystem::writePrivateUtf8(const QString &path, const QString &text) {
    return makePrivateFolder(QFileInfo(path).absolutePath()) &&
           writePrivateFile(path, text.toUtf8());
}

void QtFileSystem::removeOldPrivateFiles(const QDateTime &now) const {
    removeFilesModifiedBefore(folder_, now.addDays(-1));
}

QString QtFileSystem::perUserPrivateFolder() {
    QString base = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (base.isEmpty())
        base = QDir::homePath();
    return QDir(base).filePath(QStringLiteral("Velino-apercus"));
}

bool DesktopUrlOpener::openUrl(const QUrl &url) {
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    const QString xdgOpen = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (!xdgOpen.isEmpty())
        return openWithXdgOpen(xdgOpen, url);
#endif
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
