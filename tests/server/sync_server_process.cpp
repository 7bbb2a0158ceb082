#include "sync_server_process.h"

#include <QDeadlineTimer>
#include <QUrl>

#include <csignal>

namespace velino::test {

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
                   arguments.contains(QStringLiteral("--listen"))
                       ? arguments
                       : arguments + QStringList{"--listen", "127.0.0.1:0"});
    const QByteArray ready = "velino-sync-server: pret sur ";
    QDeadlineTimer deadline(15000);
    while (!process_.canReadLine() && process_.waitForReadyRead(int(deadline.remainingTime()))) {
    }
    const QByteArray line = process_.readLine().trimmed();
    if (!line.startsWith(ready)) {
        *error = QStringLiteral("no ready line (%1): %2")
                     .arg(QString::fromUtf8(line), QString::fromUtf8(errorOutput()));
        return false;
    }
    baseUrl_ = QString::fromUtf8(line.mid(ready.size()));
    return true;
}

int SyncServerProcess::port() const {
    return QUrl(baseUrl_).port();
}

void SyncServerProcess::killHard() {
    process_.kill(); // SIGKILL
    process_.waitForFinished(10000);
}

void SyncServerProcess::sendTerminate() {
    ::kill(pid_t(process_.processId()), SIGTERM);
}

int SyncServerProcess::waitForExit(int timeoutMs) {
    if (process_.state() != QProcess::NotRunning)
        process_.waitForFinished(timeoutMs);
    const bool exited = process_.state() == QProcess::NotRunning;
    return exited && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QByteArray SyncServerProcess::errorOutput() {
    QFile file(errorFile_.fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList plainHttpOn(const QString &databaseUrl) {
    return {"--plain-http", "--database", databaseUrl, "--max-requests-per-minute", "0"};
}

} // namespace velino::test
