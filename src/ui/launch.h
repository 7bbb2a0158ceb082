#pragma once

class QGuiApplication;

namespace velino::ui {

// Everything after the application object exists: the command-line options, the QML
// engine and the first window; then the event loop. Returns the exit status.
//
//   --password TEXT     makes one unlock attempt with TEXT as soon as the window is up
//   --preset KIND       applies the built-in preset KIND once the window is unlocked, as
//                       its tile would
//   --screenshot FILE   saves the window as a PNG once it has settled (the live preview
//                       loaded, when unlocked), then quits
//   --screenshot-delay MS   wait before the screenshot (default 1500)
//   --measure           plays the benchmark session (measure_scenario.h)
int runApplication(QGuiApplication &app);

} // namespace velino::ui
