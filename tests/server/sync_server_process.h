#pragma once

#include <QDeadlineTimer>
#include <QProcess>
#include <QTemporaryFile>
#include <QUrl>

#include <csignal>

namespace velino::test {

// The velino-sync-server program, on a free port of 127.0.0.1 unless told --listen.
class SyncServerProcess {
public:
    ~SyncServerProcess() {
        if (process_.state() != QProcess::NotRunning)
            killHard();
    }

    bool start(const QStringList &arguments, QString *error) {
        // The log goes to a file: a pipe nobody reads would stall the program once full.
        errorFile_.open();
        process_.setStandardErrorFile(errorFile_.fileName());
        process_.start(QStringLiteral(VELINO_SYNC_SERVER_BINARY),
                       arguments.contains(QStringLiteral("--listen"))
                           ? arguments
                           : arguments + QStringList{"--listen", "127.0.0.1:0"});
        QDeadlineTimer deadline(15000);
        while (!process_.canReadLine() &&
               process_.waitForReadyRead(int(deadline.remainingTime()))) {
        }
        const QByteArray ready = "velino-sync-server: pret sur ";
        const QByteArray line = process_.readLine().trimmed();
        baseUrl_ = QString::fromUtf8(line.mid(ready.size()));
        *error = QString::fromUtf8("no ready line (" + line + "): " + errorOutput());
        return line.startsWith(ready);
    }
    QString baseUrl() const { return baseUrl_; }
    int port() const { return QUrl(baseUrl_).port(); }

    void killHard() {
        process_.kill(); // SIGKILL
        process_.waitForFinished(10000);
    }
    void sendTerminate() { ::kill(pid_t(process_.processId()), SIGTERM); }
    // -1 when it does not exit normally in time.
    int waitForExit(int timeoutMs = 10000) {
        if (process_.state() != QProcess::NotRunning)
            process_.waitForFinished(timeoutMs);
        const bool exited = process_.state() == QProcess::NotRunning;
        return exited && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    int terminate() { return sendTerminate(), waitForExit(); }
    QByteArray errorOutput() {
        QFile file(errorFile_.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QProcess process_;
    QString baseUrl_;
    QTemporaryFile errorFile_;
};

inline QStringList plainHttpOn(const QString &databaseUrl) {
    return {"--plain-http", "--database", databaseUrl, "--max-requests-per-minute", "0"};
}

} // namespace velino::test
