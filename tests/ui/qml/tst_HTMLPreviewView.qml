import QtQuick
import QtTest
import QtWebEngine
import Velino
import VelinoTest

// The e-mail preview: reloads, the service host's base, the file route for large documents,
// and the modes (phone width, forced dark mode, remote images blocked) with the size line.
Item {
    id: scene
    width: 700
    height: 500

    Rectangle { anchors.fill: parent; color: "#ff0000" }
    Component { id: previewComponent; HTMLPreviewView { anchors.fill: parent } }
    Component { id: rawViewComponent; WebEngineView { anchors.fill: parent } }
    Component { id: signalSpyComponent; SignalSpy { } }

    TestCase {
        id: testCase
        name: "HTMLPreviewView"
        when: windowShown

        function page(title, body, head) {
            return "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n<meta charset=\"utf-8\">" + (head || "") + "<title>" +
                title + "</title></head><body style=\"margin:0\">" + body + "</body></html>"
        }

        function imagePage(imageUrl) {
            return page("Mode", "<img alt=\"Logo Korvel\" src=\"" + imageUrl + "\" width=\"8\" height=\"8\"><p>Bonjour</p>",
                        "<meta name=\"viewport\" content=\"width=device-width\">")
        }

        readonly property string smallHtml: page("Petit", "<p id=\"t\">Votre appareil est pret</p><a id=\"rel\" href=\"velino.html\">lien</a>")

        // A logo inlined as data: weighs more than QtWebEngine's data: URL limit.
        readonly property string largeHtml: page("Gros", "<img alt=\"\" src=\"data:image/png;base64," + "QUFB+/".repeat(300000) +
                                                 "\"><p id=\"t\">Fin du mail é</p><a id=\"rel\" href=\"velino.html\">lien</a>")

        function tallHtml(paragraphs) {
            return page("Long " + paragraphs, "<p style=\"height:40px;margin:0\">Ligne</p>".repeat(paragraphs))
        }

        function evaluate(view, script) {
            let done = false, value
            view.runJavaScript(script, (result) => { value = result; done = true })
            tryVerify(() => done, 10000, "script answered: " + script)
            return value
        }

        // Runs `action` and waits for the end of the load it starts; returns its status.
        function loadAndWait(view, action) {
            const spy = createTemporaryObject(signalSpyComponent, testCase, { target: view, signalName: "loadingChanged" })
            action()
            const finished = () => spy.signalArguments.map(a => a[0].status).find(s => s !== WebEngineView.LoadStartedStatus)
            tryVerify(() => finished() !== undefined, 20000, "load finished")
            return finished()
        }

        function makePreview(properties, title) {
            const preview = createTemporaryObject(previewComponent, scene, properties)
            verify(preview)
            if (title === null)
                return preview
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000, "first page shown")
            if (title !== undefined)
                tryCompare(preview.webView, "title", title, 20000)
            return preview
        }

        // The text of #t and the links resolved on the base of `host`.
        function compareShown(preview, text, host) {
            compare(evaluate(preview.webView, "document.getElementById('t').textContent"), text)
            compare(evaluate(preview.webView, "document.baseURI"), "https://" + host + "/")
            compare(evaluate(preview.webView, "document.getElementById('rel').href"), "https://" + host + "/velino.html")
        }

        function test_emptyHtmlShowsTheBackgroundThrough() {
            const preview = makePreview({ html: "" })
            wait(300)
            waitForRendering(preview.webView)
            const pixel = grabImage(scene).pixel(350, 250)
            verify(pixel.r > 0.95 && pixel.g < 0.05 && pixel.b < 0.05, "backdrop visible, got " + pixel)
            verify(String(preview.webView.url).indexOf("korvel.example") < 0, "no navigation to the host")
        }

        // Every assignment reloads, even of the same text. No white flash: the view is
        // hidden until the first page is loaded, never hidden again after.
        function test_reloadsOnEveryAssignmentWithoutHiding() {
            const preview = makePreview({ html: smallHtml }, null)
            verify(preview.webView.opacity === 0 || preview.loader.hasShownPage)
            tryCompare(preview.webView, "title", "Petit", 20000)
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000)
            compare(evaluate(preview.webView, "window.velinoMarker = 7"), 7)
            const count = preview.loader.loadCount
            compare(loadAndWait(preview.webView, () => {
                preview.html = smallHtml
                compare(preview.webView.opacity, 1)
            }), WebEngineView.LoadSucceededStatus)
            compare(preview.loader.loadCount, count + 1)
            compare(evaluate(preview.webView, "typeof window.velinoMarker"), "undefined")
        }

        // A reload keeps the reader where they were, in proportion when the page's height
        // changed; a reader at the top stays at the top.
        function test_reloadKeepsTheReadingPosition() {
            const preview = makePreview({ html: tallHtml(100) }, "Long 100")
            const view = preview.webView
            const position = () => evaluate(view, "window.scrollY / (document.documentElement.scrollHeight - window.innerHeight)")
            loadAndWait(view, () => preview.html = tallHtml(101))
            compare(evaluate(view, "window.scrollY"), 0, "top stays top")
            evaluate(view, "window.scrollTo(0, 0.6 * (document.documentElement.scrollHeight - window.innerHeight)); 0")
            tryVerify(() => Math.abs(view.scrollPosition.y / (view.contentsSize.height - view.height) - 0.6) < 0.01,
                      5000, "scroll known to the view")
            for (const paragraphs of [100, 200]) {
                loadAndWait(view, () => preview.html = tallHtml(paragraphs))
                tryVerify(() => Math.abs(position() - 0.6) < 0.02, 5000, paragraphs + " paragraphs: " + position())
            }
        }

        function test_pageHasTheHttpsBaseOfTheServiceHost() {
            const preview = makePreview({ html: smallHtml }, "Petit")
            verify(!preview.loader.lastLoadUsedFile)
            compareShown(preview, "Votre appareil est pret", "korvel.example")
            // A new host reloads the page on its base.
            compare(loadAndWait(preview.webView, () => preview.serviceHost = "atelier.example"),
                    WebEngineView.LoadSucceededStatus)
            compare(evaluate(preview.webView, "document.baseURI"), "https://atelier.example/")
        }

        // Over the data: URL limit, through a file: same base, one <base>, UTF-8.
        function test_largeDocumentStillShows() {
            const preview = makePreview({ html: largeHtml }, "Gros")
            verify(preview.loader.dataUrlLengthOf(largeHtml) > preview.loader.maxDataUrlLength, "the document is over the limit")
            verify(preview.loader.lastLoadUsedFile)
            compareShown(preview, "Fin du mail é", "korvel.example")
            compare(evaluate(preview.webView, "document.querySelectorAll('base').length"), 1)
            compare(evaluate(preview.webView, "document.characterSet"), "UTF-8")
        }

        // The limit is QtWebEngine's own: a data: URL exactly at the limit loads, one
        // character more fails, and the preview takes the file route for that one only.
        function test_dataUrlLimitMatchesTheWebEngine() {
            const preview = makePreview({ html: "" })
            const fitting = "a".repeat(preview.loader.maxDataUrlLength - preview.loader.dataUrlLengthOf(""))
            for (const [html, status] of [[fitting, WebEngineView.LoadSucceededStatus], [fitting + "a", WebEngineView.LoadFailedStatus]]) {
                const raw = createTemporaryObject(rawViewComponent, scene)
                compare(loadAndWait(raw, () => raw.loadHtml(html, "https://korvel.example")), status)
            }
            compare(loadAndWait(preview.webView, () => preview.html = fitting), WebEngineView.LoadSucceededStatus)
            verify(!preview.loader.lastLoadUsedFile)
            compare(loadAndWait(preview.webView, () => preview.html = fitting + "a"), WebEngineView.LoadSucceededStatus)
            verify(preview.loader.lastLoadUsedFile)
            compare(evaluate(preview.webView, "document.body.textContent.length"), fitting.length + 1)
        }

        // No HTTPS base: the test's image server speaks plain HTTP on loopback.
        function showIn(mode, html) {
            return makePreview({ html: html, mode: mode, serviceHost: "" })
        }

        function test_phoneIsNarrowAndDarkInvertsAllButPictures() {
            const phone = showIn(PreviewMode.Phone, imagePage("data:,"))
            compare(evaluate(phone.webView, "window.innerWidth"), 375)
            compare(phone.webView.x, (scene.width - 375) / 2, "centred")
            compare(evaluate(showIn(PreviewMode.Desktop, imagePage("data:,")).webView, "window.innerWidth"), scene.width)
            const dark = showIn(PreviewMode.Dark, imagePage("data:,"))
            for (const element of ["document.documentElement", "document.images[0]"])
                verify(String(evaluate(dark.webView, "getComputedStyle(" + element + ").filter")).indexOf("invert(1)") >= 0, element)
            // The other modes load the document as it is.
            for (const mode of [PreviewMode.Desktop, PreviewMode.Phone])
                compare(UiHelpers.previewDocument(imagePage("x"), mode), imagePage("x"))
        }

        function test_imagesAreRequestedExceptWithoutImages() {
            const port = TestSupport.startImageServer()
            verify(port > 0)
            const before = TestSupport.imageRequests()
            const blocked = showIn(PreviewMode.NoImages, imagePage("http://127.0.0.1:" + port + "/logo.png?a"))
            wait(500)
            compare(TestSupport.imageRequests(), before, "no request without images")
            compare(evaluate(blocked.webView, "document.images[0].naturalWidth"), 0)
            showIn(PreviewMode.Desktop, imagePage("http://127.0.0.1:" + port + "/logo.png?b"))
            tryVerify(() => TestSupport.imageRequests() === before + 1, 5000, "the image is requested")
            // Switching a shown preview to "Sans images" reloads it without the image.
            blocked.mode = PreviewMode.Desktop
            tryVerify(() => TestSupport.imageRequests() === before + 2, 5000, "requested once allowed")
        }

        function test_sizeLine_data() {
            return [{ tag: "default mail", bytes: 12165, text: "Taille du mail : 12 Ko", clipped: false },
                    { tag: "at the limit", bytes: 102 * 1024, text: "Taille du mail : 102 Ko", clipped: false },
                    { tag: "one byte over", bytes: 102 * 1024 + 1, text: "Taille du mail : 102 Ko", clipped: true }]
        }

        function test_sizeLine(data) {
            compare(UiHelpers.mailSizeText(data.bytes), data.text)
            compare(UiHelpers.isClippedByGmail(data.bytes), data.clipped)
        }
    }
}
