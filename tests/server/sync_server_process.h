#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryFile>

namespace velino::test {

// The velino-sync-server program, on a free port of 127.0.0.1 unless told --listen.
class SyncServerProcess {
public:
    ~SyncServerProcess();

    // Starts it with `arguments` and waits for its ready line; false when it does not come.
    bool start(const QStringList &arguments, QString *error);
    // As printed in the ready line: https://127.0.0.1:PORT or http://...
    QString baseUrl() const { return baseUrl_; }
    int port() const;

    void killHard();
    void sendTerminate();
    // The exit code, or -1 when it does not exit normally in time.
    int waitForExit(int timeoutMs = 10000);
    int terminate() { return sendTerminate(), waitForExit(); }
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

} // namespace velino::test
