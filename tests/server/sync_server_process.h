#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryFile>

namespace velino::test {

// The velino-sync-server program, started on a free port of 127.0.0.1.
class SyncServerProcess {
public:
    ~SyncServerProcess();

    // Starts it with `arguments` and --listen 127.0.0.1:0, and waits for its ready line.
    bool start(const QStringList &arguments, QString *error);
    // As printed in the ready line: https://127.0.0.1:PORT or http://...
    QString baseUrl() const { return baseUrl_; }
    int port() const;

    void killHard();
    // SIGTERM, then the exit code, or -1 when it does not exit normally in time.
    int terminate(int timeoutMs = 10000);
    void sendTerminate();
    int waitForExit(int timeoutMs = 10000);
    // Everything the program wrote on its standard error so far.
    QByteArray errorOutput();

private:
    QProcess process_;
    QString baseUrl_;
    // The log goes to a file: a pipe nobody reads would stall the program once full.
    QTemporaryFile errorFile_;
};

// Plain HTTP on the storage at `databaseUrl`, without a request ceiling.
QStringList plainHttpOn(const QString &databaseUrl);

// Runs the program to its end with `arguments`; its exit code and standard error.
struct ProgramRun {
    int exitCode = -1;
    QString errorOutput;
};
ProgramRun runSyncServer(const QStringList &arguments);

} // namespace velino::test
