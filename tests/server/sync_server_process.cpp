#include "sync_server_process.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QUrl>

#include <csignal>

namespace velino::test {
namespace {

constexpr int kStartTimeoutMs = 15000;
const QByteArray kReadyPrefix = "velino-sync-server: pret sur ";

} // namespace

SyncServerProcess::~SyncServerProcess() {
    if (process_.state() != QProcess::NotRunning)
        killHard();
}

bool SyncServerProcess::start(const QStringList &arguments, QString *error) {
    if (!errorFile_.open()) {
        *error = QStringLiteral("no temporary file for the log");
        return false;
    }
    process_.setStandardErrorFile(errorFile_.fileName());
    process_.start(QStringLiteral(VELINO_SYNC_SERVER_BINARY),
                   arguments +
                       QStringList{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")});
    QDeadlineTimer deadline(kStartTimeoutMs);
    QByteArray line;
    while (!deadline.hasExpired()) {
        if (process_.canReadLine()) {
            line = process_.readLine().trimmed();
            break;
        }
        if (!process_.waitForReadyRead(int(deadline.remainingTime())))
            break;
    }
    if (!line.startsWith(kReadyPrefix)) {
        *error = QStringLiteral("no ready line (%1): %2")
                     .arg(QString::fromUtf8(line), QString::fromUtf8(errorOutput()));
        return false;
    }
    baseUrl_ = QString::fromUtf8(line.mid(kReadyPrefix.size()));
    return true;
}

int SyncServerProcess::port() const {
    return QUrl(baseUrl_).port();
}

void SyncServerProcess::killHard() {
    process_.kill(); // SIGKILL
    process_.waitForFinished(10000);
}

int SyncServerProcess::terminate(int timeoutMs) {
    sendTerminate();
    return waitForExit(timeoutMs);
}

void SyncServerProcess::sendTerminate() {
    ::kill(pid_t(process_.processId()), SIGTERM);
}

int SyncServerProcess::waitForExit(int timeoutMs) {
    if (!process_.waitForFinished(timeoutMs) || process_.exitStatus() != QProcess::NormalExit)
        return -1;
    return process_.exitCode();
}

QByteArray SyncServerProcess::errorOutput() {
    QFile file(errorFile_.fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList plainHttpOn(const QString &databaseUrl) {
    return {QStringLiteral("--plain-http"), QStringLiteral("--database"), databaseUrl,
            QStringLiteral("--max-requests-per-minute"), QStringLiteral("0")};
}

ProgramRun runSyncServer(const QStringList &arguments) {
    QProcess process;
    process.start(QStringLiteral(VELINO_SYNC_SERVER_BINARY), arguments);
    ProgramRun run;
    if (!process.waitForFinished(15000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.errorOutput = QString::fromUtf8(process.readAllStandardError());
    return run;
}

} // namespace velino::test
