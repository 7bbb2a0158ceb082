import QtQuick
import QtWebEngine
import Velino

// The live e-mail preview: a transparent web view showing `html` with the workshop's
// site as base URL. Every assignment of `html` reloads the page, even with the same
// text, and so does every change `changeSource` announces. The view stays hidden until
// its first page is loaded.
Item {
    id: root

    property alias html: loader.html
    property alias serviceHost: loader.serviceHost
    property alias changeSource: loader.changeSource
    readonly property alias webView: web
    readonly property alias loader: loader

    WebEngineView {
        id: web
        anchors.fill: parent
        backgroundColor: "transparent"
        opacity: loader.hasShownPage ? 1 : 0
    }

    PreviewLoader {
        id: loader
        view: web
        serviceHost: UiHelpers.serviceHost
    }
}
