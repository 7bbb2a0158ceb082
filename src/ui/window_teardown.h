#pragma once

class QQuickWindow;

namespace velino::ui {

// Keeps what the user typed in a window that is closing: the window's store does at once
// what its pending debounces would have done.
void savePendingChanges(QQuickWindow *window);

// Destroys a window that is no longer shown, without telling assistive tools about the
// teardown of its items.
//
// Qt 6.4 sends accessibility events from items being destroyed: when the window goes,
// its menu bar (a Qt Quick Controls object) destroys its children, and the items among
// them, re-parented to nothing one by one, change their effective visibility, raise
// ObjectShow or ObjectHide, and emit visibleChanged while half destroyed. When an AT-SPI
// client listens to events (a screen reader does), the bridge answers these events on
// the bus and the process ends in a segmentation fault (seen with a menu bar holding at
// least one menu, never with an empty one or without a listener). The window's
// disappearance was already announced when it was hidden, so nothing is lost for the user.
void destroyClosedWindow(QQuickWindow *window);

} // namespace velino::ui
