#include "launch.h"

#include "app_shell.h"
#include "lock_state.h"

#include <QCommandLineParser>
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
    QString screenshotFile;
    int screenshotDelayMs = 1500;
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
    parser.addOptions({password, screenshot, delay});
    parser.process(app);

    LaunchOptions options;
    options.hasPassword = parser.isSet(password);
    options.password = parser.value(password);
    options.screenshotFile = parser.value(screenshot);
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

void scheduleScreenshot(QQuickWindow *window, const QString &file, int delayMs) {
    QTimer::singleShot(delayMs, window, [window, file] {
        const QImage image = window->grabWindow();
        const bool saved = !image.isNull() && image.save(file, "PNG");
        if (!saved)
            std::fprintf(stderr, "velino: could not save the screenshot to %s\n",
                         qUtf8Printable(file));
        QCoreApplication::exit(saved ? 0 : 1);
    });
}

} // namespace

int runApplication(QGuiApplication &app) {
    const LaunchOptions options = parseOptions(app);

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    AppShell shell(&engine);
    QQuickWindow *window = shell.openWindow();
    if (!window)
        return 1;

    if (options.hasPassword)
        attemptUnlock(window, options.password);
    if (!options.screenshotFile.isEmpty())
        scheduleScreenshot(window, options.screenshotFile, options.screenshotDelayMs);
    return app.exec();
}

} // namespace velino::ui
