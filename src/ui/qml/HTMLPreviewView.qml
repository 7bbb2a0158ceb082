import QtQuick
import QtWebEngine
import Velino

// The live e-mail preview: a transparent web view showing `html` with the workshop's
// site as base URL. Every assignment of `html` reloads the page, even with the same
// text, and so does every change `changeSource` announces. The view stays hidden until
// its first page is loaded.
//
// Each new page opens where the reader was: at the same proportion of its height, so
// that someone editing the end of the e-mail keeps seeing it. The page's scroll bar is
// drawn thin, without arrows, and kept clear of the frame's rounded corners. Both come
// from a script run in the page (the generated HTML itself is left as it is).
Item {
    id: root

    property alias html: loader.html
    // PreviewMode.Mode: Desktop (as it is), Phone (375 CSS pixels wide, centred), Dark (as
    // a client forcing dark mode shows it), NoImages (remote images not loaded).
    property alias mode: loader.mode
    readonly property bool phone: mode === PreviewMode.Phone
    property alias serviceHost: loader.serviceHost
    property alias changeSource: loader.changeSource
    readonly property alias webView: web
    readonly property alias loader: loader

    WebEngineView {
        id: web
        x: root.phone ? Math.max(0, (root.width - width) / 2) : 0
        width: root.phone ? Math.min(375, root.width) : root.width
        height: root.height
        backgroundColor: "transparent"
        opacity: loader.hasShownPage ? 1 : 0
        // Not a Tab stop: the page would keep the focus among its own links, and they
        // lead nowhere useful from a preview. A screen reader reads the page from the
        // accessibility tree; a click still focuses it for selecting and copying.
        activeFocusOnTab: false
        onLoadingChanged: root.leaveTabOrder(web)
    }

    PreviewLoader {
        id: loader
        view: web
        serviceHost: UiHelpers.serviceHost
        onAboutToLoad: root.keepReadingPosition()
    }

    // The web engine's own item inside the view takes Tab focus on its own: out with it.
    function leaveTabOrder(item) {
        for (let i = 0; i < item.children.length; ++i) {
            item.children[i].activeFocusOnTab = false
            leaveTabOrder(item.children[i])
        }
    }

    // Where the reader is, as a proportion of what can be scrolled (0 = top, 1 = end).
    property real readingPosition: 0
    readonly property int cornerClearance: 22

    function keepReadingPosition() {
        const scrollable = web.contentsSize.height - web.height
        if (loader.hasShownPage)
            readingPosition = scrollable > 0 ? Math.max(0, Math.min(1, web.scrollPosition.y / scrollable)) : 0
        const script = WebEngine.script()
        script.name = "velino-preview"
        script.injectionPoint = WebEngineScript.DocumentReady
        script.worldId = WebEngineScript.ApplicationWorld
        script.sourceCode = pageScript(readingPosition)
        web.userScripts.clear()
        web.userScripts.insert(script)
    }

    function pageScript(position) {
        const css = "::-webkit-scrollbar{width:10px;height:10px;background:transparent}"
                  + "::-webkit-scrollbar-button{display:none;width:0;height:0}"
                  + "::-webkit-scrollbar-track{background:transparent;margin:" + cornerClearance + "px 0}"
                  + "::-webkit-scrollbar-thumb{background-color:rgba(100,116,139,0.62);border-radius:5px;"
                  + "border:2px solid transparent;background-clip:padding-box}"
                  + "::-webkit-scrollbar-thumb:hover{background-color:rgba(100,116,139,0.85)}"
                  + "::-webkit-scrollbar-corner{background:transparent}"
        return "(function(){var s=document.createElement('style');s.textContent=" + JSON.stringify(css) + ";"
             + "(document.head||document.documentElement).appendChild(s);"
             + "var p=" + position + ";if(!(p>0))return;"
             + "function go(){var e=document.scrollingElement||document.documentElement;"
             + "e.scrollTop=p*(e.scrollHeight-window.innerHeight);}"
             + "go();window.addEventListener('load',go);})();"
    }
}
