#pragma once

namespace velino::ui {

// Picks how the windows are drawn; call it before the application object exists and
// after QtWebEngineQuick::initialize() (which asks for OpenGL).
//
// The window is a form that changes a few items at a time. Qt Quick's software renderer
// repaints only the changed region, while its OpenGL renderer redraws the whole window on
// every frame: without a graphics card (Mesa's llvmpipe) that is 35 to 65 ms a frame at
// 1320 x 900, against a few milliseconds for a changed field or the preview. So the
// software renderer is the default, and on X11 no OpenGL driver is loaded at all (the web
// engine then composes the preview in software too, as it does under the software
// renderer anyway): some 30 MB less memory. QT_QUICK_BACKEND or QSG_RHI_BACKEND, when
// set, leave the choice to Qt (QSG_RHI_BACKEND=opengl draws with the graphics card).
void chooseSceneGraphBackend();

} // namespace velino::ui
