#include "measure_scenario.h"

#include "composer_store.h"
#include "lock_state.h"
#include "window_controller.h"
#include "window_probe.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>

#include <cstdio>

namespace velino::ui {

MeasureScenario::MeasureScenario(QQuickWindow *window, QObject *parent)
    : QObject(parent), m_window(window) {
    connect(window, &QQuickWindow::frameSwapped, this, &MeasureScenario::onFrameSwapped,
            Qt::QueuedConnection);
    m_keyTimer.setInterval(50);
    connect(&m_keyTimer, &QTimer::timeout, this, &MeasureScenario::typeNextKey);
}

void MeasureScenario::report(const char *event) {
    std::fprintf(stderr, "velino-measure %s %lld\n", event,
                 static_cast<long long>(QDateTime::currentMSecsSinceEpoch()));
    std::fflush(stderr);
}

void MeasureScenario::onFrameSwapped() {
    switch (m_step) {
    case Step::LockFrame:
        report("lock-painted");
        m_step = Step::Unlocking;
        QTimer::singleShot(300, this, &MeasureScenario::unlock);
        break;
    case Step::FirstLoad:
        if (!m_mainPainted && m_loader) {
            m_mainPainted = true;
            report("main-painted");
        }
        break;
    case Step::FirstPreviewFrame:
        report("preview-painted");
        m_step = Step::Settling;
        QTimer::singleShot(1000, this, [this] {
            QQuickItem *field = findFieldControl(m_window, "subject");
            if (!field) {
                std::fprintf(stderr, "velino-measure: no subject field\n");
                QCoreApplication::exit(1);
                return;
            }
            field->forceActiveFocus();
            m_step = Step::Typing;
            m_keyTimer.start();
        });
        break;
    case Step::ReloadFrame:
        report("preview-repainted");
        QTimer::singleShot(300, this, &MeasureScenario::runNextPresetOperation);
        m_step = Step::Settling;
        break;
    case Step::PresetFrame:
        report((m_presetEvent + "-painted").constData());
        m_step = Step::Settling;
        QTimer::singleShot(300, this, &MeasureScenario::runNextPresetOperation);
        break;
    default:
        break;
    }
}

void MeasureScenario::unlock() {
    auto *lock = m_window ? m_window->findChild<LockState *>() : nullptr;
    if (!lock) {
        std::fprintf(stderr, "velino-measure: the window has no lock state\n");
        QCoreApplication::exit(1);
        return;
    }
    lock->setPassword(LockState::kPassword);
    report("unlock");
    lock->unlock();
    report("main-created");
    // The main content is built as part of unlocking.
    m_loader = findPreviewLoader(m_window);
    m_view = findPreviewWebView(m_window);
    if (!m_loader || !m_view) {
        std::fprintf(stderr, "velino-measure: no preview after unlocking\n");
        QCoreApplication::exit(1);
        return;
    }
    m_step = Step::FirstLoad;
    connect(m_view, SIGNAL(loadingChanged(QWebEngineLoadingInfo)), this,
            SLOT(onViewLoadingChanged()));
    connect(m_loader, SIGNAL(loadRequested()), this, SLOT(onLoadRequested()));
    if (auto *controller = m_window->findChild<WindowController *>())
        connect(controller->store(), &ComposerStore::generatedHTMLChanged, this,
                &MeasureScenario::onHtmlRegenerated);
    onViewLoadingChanged();
}

void MeasureScenario::onViewLoadingChanged() {
    if (!m_view || m_view->property("loading").toBool())
        return;
    if (m_step == Step::FirstLoad && m_loader->property("hasShownPage").toBool()) {
        m_step = Step::FirstPreviewFrame;
        m_window->update();
    } else if (m_step == Step::Reload && m_loadsAtRegeneration >= 0 &&
               m_loader->property("loadCount").toInt() > m_loadsAtRegeneration) {
        report("preview-loaded");
        m_step = Step::ReloadFrame;
        m_window->update();
    }
}

void MeasureScenario::onLoadRequested() {
    if (m_step == Step::Reload && m_loadsAtRegeneration >= 0)
        report("preview-reload-requested");
}

void MeasureScenario::onHtmlRegenerated() {
    if (m_step != Step::Reload || m_loadsAtRegeneration >= 0 || !m_loader)
        return;
    m_loadsAtRegeneration = m_loader->property("loadCount").toInt();
    report("regenerated");
}

void MeasureScenario::runNextPresetOperation() {
    auto *controller = m_window ? m_window->findChild<WindowController *>() : nullptr;
    ComposerStore *store = controller ? controller->store() : nullptr;
    if (!store || store->customPresets().size() < 4 || m_presetOperation >= 3) {
        report("done");
        m_step = Step::Done;
        return;
    }
    m_step = Step::PresetFrame;
    switch (m_presetOperation++) {
    case 0:
        m_presetEvent = "preset-load";
        report(m_presetEvent.constData());
        store->loadCustomPreset(store->customPresets().at(3));
        break;
    case 1:
        m_presetEvent = "preset-save";
        report(m_presetEvent.constData());
        store->saveAsNewCustomPreset();
        break;
    default:
        m_presetEvent = "preset-delete";
        report(m_presetEvent.constData());
        store->deleteCustomPreset(store->customPresets().first());
        break;
    }
    m_window->update();
}

void MeasureScenario::typeNextKey() {
    if (!m_window || m_keysLeft <= 0)
        return;
    static const char keys[] = "ABCDEFGH";
    const char c = keys[8 - m_keysLeft];
    const Qt::Key key = Qt::Key(Qt::Key_A + (c - 'A'));
    QKeyEvent press(QEvent::KeyPress, key, Qt::ShiftModifier, QString(QLatin1Char(c)));
    QKeyEvent release(QEvent::KeyRelease, key, Qt::ShiftModifier, QString(QLatin1Char(c)));
    if (--m_keysLeft == 0) {
        m_keyTimer.stop();
        m_step = Step::Reload;
        report("last-key");
    }
    QGuiApplication::sendEvent(m_window, &press);
    QGuiApplication::sendEvent(m_window, &release);
}

} // namespace velino::ui
