import QtQuick
import QtTest
import QtWebEngine
import Velino
import VelinoTest

// The preview's modes change only how the e-mail is shown: phone width, forced dark
// mode, remote images blocked; and the size line under the preview.
Item {
    id: scene
    width: 900
    height: 600

    Component {
        id: previewComponent
        HTMLPreviewView {
            anchors.fill: parent
        }
    }

    TestCase {
        name: "PreviewModes"
        when: windowShown

        function evaluate(view, script) {
            let done = false
            let value
            view.runJavaScript(script, function(result) { value = result; done = true })
            tryVerify(() => done, 10000, "script answered: " + script)
            return value
        }

        function page(imageUrl) {
            return "<!DOCTYPE html><html><head><meta charset=\"utf-8\">"
                 + "<meta name=\"viewport\" content=\"width=device-width\"><title>Mode</title></head>"
                 + "<body style=\"margin:0;background:#ffffff;color:#111111\"><img alt=\"Logo Korvel\" src=\""
                 + imageUrl + "\" width=\"8\" height=\"8\"><p>Bonjour</p></body></html>"
        }

        function showIn(mode, html) {
            // No HTTPS base: the test's image server speaks plain HTTP on loopback.
            const preview = createTemporaryObject(previewComponent, scene,
                                                  { html: html, mode: mode, serviceHost: "" })
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000, "page shown")
            return preview
        }

        function test_phoneLaysTheMailOutAt375Pixels() {
            const preview = showIn(PreviewMode.Phone, page("data:,"))
            compare(evaluate(preview.webView, "window.innerWidth"), 375)
            compare(preview.webView.x, (scene.width - 375) / 2, "centred")
            const desktop = showIn(PreviewMode.Desktop, page("data:,"))
            compare(evaluate(desktop.webView, "window.innerWidth"), scene.width)
        }

        function test_darkInvertsThePageButNotItsPictures() {
            const preview = showIn(PreviewMode.Dark, page("data:,"))
            verify(String(evaluate(preview.webView, "getComputedStyle(document.documentElement).filter")).indexOf("invert(1)") >= 0)
            verify(String(evaluate(preview.webView, "getComputedStyle(document.images[0]).filter")).indexOf("invert(1)") >= 0)
            // The other modes load the document as it is.
            for (const mode of [PreviewMode.Desktop, PreviewMode.Phone])
                compare(UiHelpers.previewDocument(page("x"), mode), page("x"))
        }

        function test_imagesAreRequestedExceptWithoutImages() {
            const port = TestSupport.startImageServer()
            verify(port > 0)
            const before = TestSupport.imageRequests()
            const blocked = showIn(PreviewMode.NoImages, page("http://127.0.0.1:" + port + "/logo.png?a"))
            wait(500)
            compare(TestSupport.imageRequests(), before, "no request without images")
            compare(evaluate(blocked.webView, "document.images[0].naturalWidth"), 0)
            showIn(PreviewMode.Desktop, page("http://127.0.0.1:" + port + "/logo.png?b"))
            tryVerify(() => TestSupport.imageRequests() === before + 1, 5000, "the image is requested")
            // Switching a shown preview to "Sans images" reloads it without the image.
            blocked.mode = PreviewMode.Desktop
            tryVerify(() => TestSupport.imageRequests() === before + 2, 5000, "requested once allowed")
        }

        function test_sizeLine_data() {
            return [
                { tag: "default mail", bytes: 12165, text: "Taille du mail : 12 Ko", clipped: false },
                { tag: "at the limit", bytes: 102 * 1024, text: "Taille du mail : 102 Ko", clipped: false },
                { tag: "one byte over", bytes: 102 * 1024 + 1, text: "Taille du mail : 102 Ko", clipped: true },
            ]
        }

        function test_sizeLine(data) {
            compare(UiHelpers.mailSizeText(data.bytes), data.text)
            compare(UiHelpers.isClippedByGmail(data.bytes), data.clipped)
        }
    }
}
