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
// after that); then, when presets are saved, three operations on the library 300 ms
// apart, each reported when called and at the next frame: preset-load and
// preset-load-painted (the fourth preset), preset-save and preset-save-painted (a new
// preset under the loaded one's name), preset-delete and preset-delete-painted (that new
// preset); done.
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
        PresetFrame,
        Done
    };

    static void report(const char *event);
    void unlock();
    void typeNextKey();
    // The next library operation, or done when none is left.
    void runNextPresetOperation();

    QPointer<QQuickWindow> m_window;
    QPointer<QObject> m_view;
    QPointer<QObject> m_loader;
    Step m_step = Step::LockFrame;
    bool m_mainPainted = false;
    int m_keysLeft = 8;
    // Loads requested before the regenerated e-mail was published; -1 until then.
    int m_loadsAtRegeneration = -1;
    QTimer m_keyTimer;
    int m_presetOperation = 0;
    QByteArray m_presetEvent;
};

} // namespace velino::ui
