#pragma once

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QQuickWindow>
#include <QTimer>

namespace velino::ui {

// Plays the same short session in the window every time, for the window benchmark, and
// writes when each stage reached the screen on standard error, one line per event:
//   velino-measure EVENT MILLISECONDS-SINCE-THE-EPOCH
// Events, in order: lock-painted (first frame of the lock screen), unlock (the password is
// submitted), main-painted (first frame of the main content, the preview still loading),
// preview-painted (first frame after the preview's first page has loaded),
// last-key (the last of eight keys typed into "Objet du mail", 50 ms apart),
// regenerated (the store published the new e-mail, after its debounce),
// preview-reload-requested (the regenerated e-mail handed to the web view; the reloads
// that every keystroke causes before, still with the old e-mail, do not count),
// preview-loaded (the web view finished loading it), preview-repainted (the first frame
// after that), done.
// The program keeps running afterwards, so that its memory can be read; its settings are
// whatever XDG_CONFIG_HOME points at.
class MeasureScenario : public QObject {
    Q_OBJECT

public:
    explicit MeasureScenario(QQuickWindow *window, QObject *parent = nullptr);

private Q_SLOTS:
    void onFrameSwapped();
    void onViewLoadingChanged();
    void onLoadRequested();
    void onHtmlRegenerated();

private:
    enum class Step {
        LockFrame,
        Unlocking,
        FirstLoad,
        FirstPreviewFrame,
        Settling,
        Typing,
        Reload,
        ReloadFrame,
        Done
    };

    static void report(const char *event);
    void unlock();
    void typeNextKey();

    QPointer<QQuickWindow> m_window;
    QPointer<QObject> m_view;
    QPointer<QObject> m_loader;
    Step m_step = Step::LockFrame;
    bool m_mainPainted = false;
    int m_keysLeft = 8;
    // Loads requested before the regenerated e-mail was published; -1 until then.
    int m_loadsAtRegeneration = -1;
    QTimer m_keyTimer;
};

} // namespace velino::ui
