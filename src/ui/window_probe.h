#pragma once

class QObject;
class QQuickItem;
class QQuickWindow;

namespace velino::ui {

// The parts of a window's main content that the launch options and the measurements act
// on, found by object name; null while the window is locked.
QObject *findPreviewLoader(QQuickWindow *window);
QObject *findPreviewWebView(QQuickWindow *window);
// The text control of a form field ("subject", "mailBody"...).
QQuickItem *findFieldControl(QQuickWindow *window, const char *fieldName);

// True once the live preview has shown its first page and is not loading another.
bool previewIsSettled(QQuickWindow *window);

} // namespace velino::ui
