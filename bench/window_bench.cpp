// The desktop window, measured on the real program: runs `velino --measure` several times
// (see src/ui/measure_scenario.h) and reports, as medians over the runs:
//   cold start         process started -> first frame of the lock screen
//   unlock -> preview  password submitted -> first frame with the preview's first page
//   key -> preview     last keystroke -> first frame with the regenerated e-mail
//                      (the store's 180 ms debounce included)
//   memory             resident memory of the program and its QtWebEngine processes, read
//                      once the session is over: PSS, which counts a page shared by several
//                      of them once in all (split between them), is the tree's total; the
//                      sum of the RSS counts a shared page once per process that maps it
// Goals: 400 ms, 1 s, 250 ms, 250 MB. Needs a display:
//   xvfb-run -a -s "-screen 0 1600x1000x24" build/bench/velino_window_bench [RUNS]
// Each run starts with an empty saved state (fresh XDG_CONFIG_HOME and XDG_DATA_HOME).

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <unistd.h>

namespace {

struct Memory {
    double rssMiB = 0;
    double pssMiB = 0;
    int processes = 0;
};

struct Run {
    QMap<QString, qint64> events;
    Memory memory;
};

// Value in kB of `key` in a /proc text file ("VmRSS:  1234 kB").
qint64 procValueKiB(const QString &path, const QByteArray &key) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').value(0).toLongLong();
    }
    return 0;
}

qint64 parentOf(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray stat = file.readAll();
    // pid (comm) state ppid ...: comm may hold spaces, so start after the last ')'.
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() : -1;
}

// The program and every process below it (the web engine's helpers).
Memory treeMemory(qint64 root) {
    QList<qint64> tree{root};
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    bool grew = true;
    while (grew) {
        grew = false;
        for (const QString &entry : entries) {
            bool ok = false;
            const qint64 pid = entry.toLongLong(&ok);
            if (ok && !tree.contains(pid) && tree.contains(parentOf(pid))) {
                tree.append(pid);
                grew = true;
            }
        }
    }
    Memory memory;
    for (const qint64 pid : tree) {
        memory.rssMiB +=
            procValueKiB(QStringLiteral("/proc/%1/status").arg(pid), "VmRSS:") / 1024.0;
        memory.pssMiB +=
            procValueKiB(QStringLiteral("/proc/%1/smaps_rollup").arg(pid), "Pss:") / 1024.0;
    }
    memory.processes = int(tree.size());
    return memory;
}

std::optional<Run> runOnce(const QString &program) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    env.insert(QStringLiteral("XDG_DATA_HOME"), config.filePath(QStringLiteral("data")));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime.path());
    if (geteuid() == 0)
        env.insert(QStringLiteral("QTWEBENGINE_DISABLE_SANDBOX"), QStringLiteral("1"));

    QProcess process;
    process.setProcessEnvironment(env);
    process.setProgram(program);
    process.setArguments({QStringLiteral("--measure")});
    process.setProcessChannelMode(QProcess::SeparateChannels);

    Run run;
    const qint64 started = QDateTime::currentMSecsSinceEpoch();
    process.start();
    if (!process.waitForStarted(10000))
        return std::nullopt;
    run.events.insert(QStringLiteral("start"), started);

    QByteArray pending;
    const qint64 deadline = started + 60000;
    while (!run.events.contains(QStringLiteral("done"))) {
        if (QDateTime::currentMSecsSinceEpoch() > deadline ||
            process.state() == QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(5000);
            std::fprintf(stderr, "window_bench: the session did not finish\n%s\n",
                         pending.constData());
            return std::nullopt;
        }
        process.waitForReadyRead(100);
        pending += process.readAllStandardError();
        qsizetype end;
        while ((end = pending.indexOf('\n')) >= 0) {
            const QList<QByteArray> parts = pending.left(end).split(' ');
            pending.remove(0, end + 1);
            if (parts.size() == 3 && parts[0] == "velino-measure")
                run.events.insert(QString::fromLatin1(parts[1]), parts[2].toLongLong());
        }
    }
    // Let the page and the caches settle as after a real edit, then read the memory.
    QThread::msleep(1000);
    run.memory = treeMemory(process.processId());
    process.terminate();
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished(5000);
    }
    return run;
}

double median(QList<double> values) {
    std::sort(values.begin(), values.end());
    const qsizetype n = values.size();
    return n == 0 ? 0 : (n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2);
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        std::fprintf(stderr, "window_bench needs a display: run it under xvfb-run -a\n");
        return 2;
    }
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 5;
    const QString program = QStringLiteral(VELINO_APP_BINARY);

    QList<double> cold, unlock, key, rss, pss;
    for (int i = 0; i < runs; ++i) {
        const std::optional<Run> run = runOnce(program);
        if (!run)
            return 1;
        const auto span = [&run](const char *from, const char *to) {
            return double(run->events.value(QLatin1StringView(to)) -
                          run->events.value(QLatin1StringView(from)));
        };
        cold.append(span("start", "lock-painted"));
        unlock.append(span("unlock", "preview-painted"));
        key.append(span("last-key", "preview-repainted"));
        rss.append(run->memory.rssMiB);
        pss.append(run->memory.pssMiB);
        std::printf("run %d: cold start %4.0f ms  unlock->preview %4.0f ms  key->preview %4.0f ms  "
                    "RSS %5.1f MiB  PSS %5.1f MiB  (%d processes)\n",
                    i + 1, cold.last(), unlock.last(), key.last(), rss.last(), pss.last(),
                    run->memory.processes);
        std::fflush(stdout);
    }
    std::printf("\nmedian of %d runs            measured   goal\n", runs);
    std::printf("cold start to lock screen    %6.0f ms   400 ms\n", median(cold));
    std::printf("unlock to first preview      %6.0f ms  1000 ms\n", median(unlock));
    std::printf("last key to preview redrawn  %6.0f ms   250 ms\n", median(key));
    std::printf("memory after unlock (PSS)    %6.0f MB    250 MB   (%.1f MiB)\n",
                median(pss) * 1.048576, median(pss));
    std::printf("sum of the processes' RSS    %6.0f MB             (%.1f MiB)\n",
                median(rss) * 1.048576, median(rss));
    return 0;
}
