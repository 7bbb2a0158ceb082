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
//   unlock -> window   password submitted -> first frame of the main content
//   preset load/save/delete  the store operation called -> the next frame (with a library)
// Goals: 400 ms, 1 s, 250 ms, 250 MB; with 1,000 saved presets the window in 400 ms and
// each preset operation in 50 ms; with a 4 MB field the window in 2 s. Needs a display:
//   xvfb-run -a -s "-screen 0 1600x1000x24" build/bench/velino_window_bench [RUNS [STATE...]]
// VELINO_BENCH_PREVIEW_MODE=0..3 opens the preview in that mode (Bureau, Telephone, Sombre,
// Sans images), as if the user had chosen it before.
// STATE is a saved state of bench/saved_states.h (default: all of them); each run starts
// from it in a fresh XDG_CONFIG_HOME and XDG_DATA_HOME.

#include "saved_states.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QSettings>
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

std::optional<Run> runOnce(const QString &program, const QString &savedState) {
    QTemporaryDir config;
    QTemporaryDir runtime;
    const QString data = config.filePath(QStringLiteral("data"));
    if (!velino::bench::writeSavedState(savedState, config.path(), data)) {
        std::fprintf(stderr, "window_bench: could not write the saved state %s\n",
                     qPrintable(savedState));
        return std::nullopt;
    }
    const QString mode = qEnvironmentVariable("VELINO_BENCH_PREVIEW_MODE");
    if (!mode.isEmpty()) {
        QSettings settings(config.filePath(QStringLiteral("Korvel/Velino.conf")),
                           QSettings::IniFormat);
        settings.setValue(QStringLiteral("velino-preview-mode-v1"), mode.toInt());
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), config.path());
    env.insert(QStringLiteral("XDG_DATA_HOME"), data);
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
    const qint64 deadline = started + 120000;
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

// A span's median, or "-" when the runs did not reach it.
void printSpan(const char *label, const QList<double> &values, const char *goal) {
    if (values.isEmpty())
        std::printf("%-30s %8s     %s\n", label, "-", goal);
    else
        std::printf("%-30s %6.0f ms   %s\n", label, median(values), goal);
}

bool runState(const QString &program, const QString &state, int runs) {
    QMap<QString, QList<double>> spans;
    QList<double> rss, pss;
    static const struct {
        const char *name, *from, *to;
    } kSpans[] = {
        {"cold", "start", "lock-painted"},
        {"window", "unlock", "main-painted"},
        {"preview", "unlock", "preview-painted"},
        {"key", "last-key", "preview-repainted"},
        {"regen", "last-key", "regenerated"},
        {"webload", "preview-reload-requested", "preview-loaded"},
        {"load", "preset-load", "preset-load-painted"},
        {"save", "preset-save", "preset-save-painted"},
        {"delete", "preset-delete", "preset-delete-painted"},
    };
    std::printf("== saved state: %s\n", qPrintable(state));
    for (int i = 0; i < runs; ++i) {
        const std::optional<Run> run = runOnce(program, state);
        if (!run)
            return false;
        std::printf("run %d:", i + 1);
        for (const auto &span : kSpans) {
            const QString from = QLatin1StringView(span.from);
            const QString to = QLatin1StringView(span.to);
            if (!run->events.contains(from) || !run->events.contains(to))
                continue;
            const double ms = double(run->events.value(to) - run->events.value(from));
            spans[QLatin1StringView(span.name)].append(ms);
            std::printf(" %s %.0f ms ", span.name, ms);
        }
        rss.append(run->memory.rssMiB);
        pss.append(run->memory.pssMiB);
        std::printf(" PSS %.1f MiB (%d processes)\n", pss.last(), run->memory.processes);
        std::fflush(stdout);
    }
    const bool library = state == QStringLiteral("presets-1000");
    const bool longField = state.startsWith(QStringLiteral("body-4mb"));
    std::printf("\nmedian of %d runs, %s         measured   goal\n", runs, qPrintable(state));
    printSpan("cold start to lock screen", spans.value(QStringLiteral("cold")), "400 ms");
    printSpan("unlock to painted window", spans.value(QStringLiteral("window")),
              library ? "400 ms" : (longField ? "2000 ms" : ""));
    printSpan("unlock to first preview", spans.value(QStringLiteral("preview")), "1000 ms");
    printSpan("last key to preview redrawn", spans.value(QStringLiteral("key")), "250 ms");
    printSpan("  of which key to regenerated", spans.value(QStringLiteral("regen")), "");
    printSpan("  of which web view loading", spans.value(QStringLiteral("webload")), "");
    printSpan("preset load to repaint", spans.value(QStringLiteral("load")), "50 ms");
    printSpan("preset save to repaint", spans.value(QStringLiteral("save")), "50 ms");
    printSpan("preset delete to repaint", spans.value(QStringLiteral("delete")), "50 ms");
    std::printf("%-30s %6.0f MB    250 MB   (%.1f MiB)\n", "memory after unlock (PSS)",
                median(pss) * 1.048576, median(pss));
    std::printf("%-30s %6.0f MB             (%.1f MiB)\n\n", "sum of the processes' RSS",
                median(rss) * 1.048576, median(rss));
    return true;
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        std::fprintf(stderr, "window_bench needs a display: run it under xvfb-run -a\n");
        return 2;
    }
    const int runs = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 5;
    QStringList states;
    for (int i = 2; i < argc; ++i)
        states.append(QString::fromLocal8Bit(argv[i]));
    if (states.isEmpty())
        states = velino::bench::savedStateNames();
    const QString program = QStringLiteral(VELINO_APP_BINARY);
    for (const QString &state : states) {
        if (!velino::bench::savedStateNames().contains(state)) {
            std::fprintf(stderr, "window_bench: unknown saved state %s\n", qPrintable(state));
            return 2;
        }
        if (!runState(program, state, runs))
            return 1;
    }
    return 0;
}
