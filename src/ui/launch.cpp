#include "launch.h"

#include "app_shell.h"
#include "composer_store.h"
#include "lock_state.h"
#include "measure_scenario.h"
#include "preset_kind.h"
#include "qt_services.h"
#include "window_controller.h"
#include "window_probe.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>

#include <cstdio>

namespace velino::ui {

namespace {

struct LaunchOptions {
    QString password;
    bool hasPassword = false;
    QString presetId;
    QString screenshotFile;
    int screenshotDelayMs = 1500;
    bool measure = false;
};

LaunchOptions parseOptions(const QGuiApplication &app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Studio mail client Korvel"));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption password(QStringLiteral("password"),
                                      QStringLiteral("Unlock attempt with TEXT at start."),
                                      QStringLiteral("TEXT"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save the window to FILE (PNG), then quit."),
                                        QStringLiteral("FILE"));
    const QCommandLineOption delay(QStringLiteral("screenshot-delay"),
                                   QStringLiteral("Wait MS milliseconds before the screenshot."),
                                   QStringLiteral("MS"), QStringLiteral("1500"));
    const QCommandLineOption preset(
        QStringLiteral("preset"),
        QStringLiteral("Apply the built-in preset KIND (devis, pret, rdv, relance) once unlocked."),
        QStringLiteral("KIND"));
    const QCommandLineOption measure(
        QStringLiteral("measure"),
        QStringLiteral("Play the benchmark session and print its timings on stderr."));
    parser.addOptions({password, screenshot, delay, preset, measure});
    parser.process(app);

    LaunchOptions options;
    options.hasPassword = parser.isSet(password);
    options.password = parser.value(password);
    options.screenshotFile = parser.value(screenshot);
    options.presetId = parser.value(preset);
    options.measure = parser.isSet(measure);
    bool ok = false;
    const int ms = parser.value(delay).toInt(&ok);
    if (ok && ms >= 0)
        options.screenshotDelayMs = ms;
    return options;
}

void attemptUnlock(QQuickWindow *window, const QString &password) {
    auto *lock = window->findChild<LockState *>();
    if (!lock) {
        std::fprintf(stderr, "velino: the window has no lock state\n");
        return;
    }
    lock->setPassword(password);
    lock->unlock();
}

// The preset is applied (and so saved) only once the window is unlocked: nothing of the
// saved state changes before the password has been typed.
bool applyPresetOnUnlock(QQuickWindow *window, const QString &id) {
    auto *controller = window->findChild<WindowController *>();
    auto *lock = window->findChild<LockState *>();
    if (!controller || !lock || !presetKindFromId(id)) {
        std::fprintf(stderr, "velino: unknown preset %s\n", qUtf8Printable(id));
        return false;
    }
    auto apply = [controller, id] { controller->store()->applyPresetById(id); };
    // A window is unlocked once and stays so: the first change is the unlock.
    if (lock->isUnlocked())
        apply();
    else
        QObject::connect(lock, &LockState::isUnlockedChanged, controller, apply,
                         Qt::SingleShotConnection);
    return true;
}

void saveScreenshot(QQuickWindow *window, const QString &file) {
    const QImage image = window->grabWindow();
    const bool saved = !image.isNull() && image.save(file, "PNG");
    if (!saved)
        std::fprintf(stderr, "velino: could not save the screenshot to %s\n", qUtf8Printable(file));
    QCoreApplication::exit(saved ? 0 : 1);
}

// After the delay, and once the live preview (when unlocked) has finished loading, plus a
// short wait for the web view to paint what it loaded; at most 20 s more.
void scheduleScreenshot(QQuickWindow *window, const QString &file, int delayMs) {
    QTimer::singleShot(delayMs, window, [window, file] {
        auto *poll = new QTimer(window);
        auto *waited = new QElapsedTimer;
        waited->start();
        poll->setInterval(50);
        QObject::connect(poll, &QTimer::timeout, window, [window, file, poll, waited] {
            auto *lock = window->findChild<LockState *>();
            const bool ready = !lock || !lock->isUnlocked() || previewIsSettled(window);
            if (!ready && waited->elapsed() < 20000)
                return;
            poll->stop();
            delete waited;
            QTimer::singleShot(400, window, [window, file] { saveScreenshot(window, file); });
        });
        poll->start();
    });
}

} // namespace

int runApplication(QGuiApplication &app) {
    const LaunchOptions options = parseOptions(app);
    // Previews and drafts are only needed while the browser or mail client opens them.
    QtFileSystem().removeOldPrivateFiles();

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    AppShell shell(&engine);
    QQuickWindow *window = shell.openWindow();
    if (!window)
        return 1;

    if (!options.presetId.isEmpty() && !applyPresetOnUnlock(window, options.presetId))
        return 2;
    if (options.measure)
        new MeasureScenario(window, window);
    if (options.hasPassword)
        attemptUnlock(window, options.password);
    if (!options.screenshotFile.isEmpty())
        scheduleScreenshot(window, options.screenshotFile, options.screenshotDelayMs);
    return app.exec();
}

} // namespace velino::ui
