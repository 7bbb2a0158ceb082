import QtQuick
import QtTest
import QtWebEngine
import Velino

Item {
    id: scene
    width: 700
    height: 500

    Rectangle {
        id: backdrop
        anchors.fill: parent
        color: "#ff0000"
    }

    Component {
        id: previewComponent
        HTMLPreviewView {
            anchors.fill: parent
        }
    }

    Component {
        id: rawViewComponent
        WebEngineView {
            anchors.fill: parent
        }
    }

    Component { id: signalSpyComponent; SignalSpy { } }

    TestCase {
        id: testCase
        name: "HTMLPreviewView"
        when: windowShown

        readonly property string smallHtml: "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n" +
            "<meta charset=\"utf-8\"><title>Petit</title></head>" +
            "<body style=\"margin:0\"><p id=\"t\">Votre appareil est pret</p>" +
            "<a id=\"rel\" href=\"velino.html\">lien</a></body></html>"

        function largeHtml(marker) {
            // A logo inlined as data: weighs more than QtWebEngine's data: URL limit.
            return "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n<meta charset=\"utf-8\">" +
                "<title>Gros " + marker + "</title></head><body style=\"margin:0\">" +
                "<img alt=\"\" src=\"data:image/png;base64," + "QUFB+/".repeat(300000) + "\">" +
                "<p id=\"t\">Fin du mail é " + marker + "</p>" +
                "<a id=\"rel\" href=\"velino.html\">lien</a></body></html>"
        }

        // Runs `script` in the page and returns its result.
        function evaluate(view, script) {
            let done = false
            let value
            view.runJavaScript(script, function(result) { value = result; done = true })
            tryVerify(() => done, 10000, "script answered: " + script)
            return value
        }

        // Runs `action` and waits until `view` has finished the load it starts; returns
        // the final load status.
        function loadAndWait(view, action) {
            const spy = createTemporaryObject(signalSpyComponent, testCase,
                                              { target: view, signalName: "loadingChanged" })
            action()
            const finished = () => {
                for (let i = 0; i < spy.count; ++i) {
                    if (spy.signalArguments[i][0].status !== WebEngineView.LoadStartedStatus)
                        return spy.signalArguments[i][0].status
                }
                return -1
            }
            tryVerify(() => finished() !== -1, 20000, "load finished")
            return finished()
        }

        function makePreview(properties) {
            const preview = createTemporaryObject(previewComponent, scene, properties)
            verify(preview)
            return preview
        }

        function waitForPage(preview, title) {
            tryVerify(() => preview.loader.hasShownPage, 20000, "first page shown")
            tryVerify(() => !preview.webView.loading, 20000, "page loaded")
            if (title !== undefined)
                tryCompare(preview.webView, "title", title, 20000)
        }

        function test_emptyHtmlShowsTheBackgroundThrough() {
            const preview = makePreview({ html: "" })
            waitForPage(preview)
            wait(300)
            waitForRendering(preview.webView)
            const image = grabImage(scene)
            const pixel = image.pixel(350, 250)
            verify(pixel.r > 0.95 && pixel.g < 0.05 && pixel.b < 0.05,
                   "backdrop visible, got " + pixel)
            verify(String(preview.webView.url).indexOf("korvel.example") < 0,
                   "no navigation to the host")
        }

        // Every assignment reloads, even of the same text. No white flash: the view is
        // hidden until the first page is loaded, never hidden again after.
        function test_reloadsOnEveryAssignmentWithoutHiding() {
            const preview = makePreview({ html: smallHtml })
            verify(preview.webView.opacity === 0 || preview.loader.hasShownPage)
            waitForPage(preview, "Petit")
            compare(preview.webView.opacity, 1)
            evaluate(preview.webView, "window.velinoMarker = 7; 0")
            compare(evaluate(preview.webView, "window.velinoMarker"), 7)
            const count = preview.loader.loadCount
            compare(loadAndWait(preview.webView, () => {
                preview.html = smallHtml
                compare(preview.webView.opacity, 1)
            }), WebEngineView.LoadSucceededStatus)
            compare(preview.loader.loadCount, count + 1)
            compare(evaluate(preview.webView, "typeof window.velinoMarker"), "undefined")

            preview.html = smallHtml.replace("Petit", "Autre").replace("est pret", "attend")
            compare(preview.webView.opacity, 1)
            tryCompare(preview.webView, "title", "Autre", 20000)
            compare(preview.webView.opacity, 1)
            compare(evaluate(preview.webView, "document.getElementById('t').textContent"),
                    "Votre appareil attend")
        }

        function tallHtml(paragraphs) {
            return "<!DOCTYPE html>\n<html lang=\"fr\"><head><meta charset=\"utf-8\">" +
                "<title>Long " + paragraphs + "</title></head><body style=\"margin:0\">" +
                "<p style=\"height:40px;margin:0\">Ligne</p>".repeat(paragraphs) + "</body></html>"
        }

        function readingPosition(view) {
            const scrollable = evaluate(view, "document.documentElement.scrollHeight - window.innerHeight")
            return evaluate(view, "window.scrollY") / scrollable
        }

        // A reload keeps the reader where they were, in proportion when the page's height
        // changed; a reader at the top stays at the top.
        function test_reloadKeepsTheReadingPosition() {
            const preview = makePreview({ html: tallHtml(100) })
            waitForPage(preview, "Long 100")
            compare(evaluate(preview.webView, "window.scrollY"), 0)
            loadAndWait(preview.webView, () => preview.html = tallHtml(101))
            compare(evaluate(preview.webView, "window.scrollY"), 0, "top stays top")

            evaluate(preview.webView, "window.scrollTo(0, 0.6 * (document.documentElement.scrollHeight - window.innerHeight)); 0")
            tryVerify(() => Math.abs(preview.webView.scrollPosition.y / (preview.webView.contentsSize.height - preview.webView.height) - 0.6) < 0.01,
                      5000, "scroll known to the view")
            for (const paragraphs of [100, 200]) {
                loadAndWait(preview.webView, () => preview.html = tallHtml(paragraphs))
                tryVerify(() => Math.abs(readingPosition(preview.webView) - 0.6) < 0.02, 5000,
                          "position kept with " + paragraphs + " paragraphs: " + readingPosition(preview.webView))
            }
        }

        function test_pageHasTheHttpsBaseOfTheServiceHost() {
            const preview = makePreview({ html: smallHtml })
            waitForPage(preview, "Petit")
            verify(!preview.loader.lastLoadUsedFile)
            compare(evaluate(preview.webView, "document.getElementById('t').textContent"),
                    "Votre appareil est pret")
            compare(evaluate(preview.webView, "document.baseURI"), "https://korvel.example/")
            compare(evaluate(preview.webView, "document.getElementById('rel').href"),
                    "https://korvel.example/velino.html")
            // A new host reloads the page on its base.
            compare(loadAndWait(preview.webView, () => preview.serviceHost = "atelier.example"),
                    WebEngineView.LoadSucceededStatus)
            compare(evaluate(preview.webView, "document.baseURI"), "https://atelier.example/")
        }

        function test_largeDocumentStillShows() {
            const html = largeHtml("A")
            verify(preview_limit(html) > 2 * 1024 * 1024, "the document is over the limit")
            const preview = makePreview({ html: html })
            waitForPage(preview, "Gros A")
            verify(preview.loader.lastLoadUsedFile)
            compare(evaluate(preview.webView, "document.getElementById('t').textContent"),
                    "Fin du mail é A")
            compare(evaluate(preview.webView, "document.baseURI"), "https://korvel.example/")
            compare(evaluate(preview.webView, "document.getElementById('rel').href"),
                    "https://korvel.example/velino.html")
            compare(evaluate(preview.webView, "document.querySelectorAll('base').length"), 1)
            compare(evaluate(preview.webView, "document.characterSet"), "UTF-8")

            // Back and forth between the two routes.
            preview.html = smallHtml
            tryCompare(preview.webView, "title", "Petit", 20000)
            verify(!preview.loader.lastLoadUsedFile)
            preview.html = largeHtml("B")
            // The title arrives before the end of a large page: wait for the whole load.
            tryCompare(preview.webView, "title", "Gros B", 20000)
            tryVerify(() => !preview.webView.loading, 20000, "large page loaded")
            compare(evaluate(preview.webView, "document.getElementById('t').textContent"),
                    "Fin du mail é B")
        }

        function preview_limit(html) {
            const probe = makePreview({ html: "" })
            return probe.loader.dataUrlLengthOf(html)
        }

        // The limit used to choose the file route is QtWebEngine's own: a document whose
        // data: URL is exactly at the limit loads from the string, one character more fails.
        function test_dataUrlLimitMatchesTheWebEngine() {
            const probe = makePreview({ html: "" })
            const limit = probe.loader.maxDataUrlLength
            const prefix = probe.loader.dataUrlLengthOf("")

            const fits = createTemporaryObject(rawViewComponent, scene)
            compare(loadAndWait(fits, () => fits.loadHtml("a".repeat(limit - prefix), "https://korvel.example")),
                    WebEngineView.LoadSucceededStatus)

            const tooLong = createTemporaryObject(rawViewComponent, scene)
            compare(loadAndWait(tooLong, () => tooLong.loadHtml("a".repeat(limit - prefix + 1), "https://korvel.example")),
                    WebEngineView.LoadFailedStatus)

            // And the preview takes the file route for that one only.
            const preview = makePreview({ html: "a".repeat(limit - prefix) })
            verify(!preview.loader.lastLoadUsedFile)
            compare(loadAndWait(preview.webView, () => preview.html = "a".repeat(limit - prefix + 1)),
                    WebEngineView.LoadSucceededStatus)
            verify(preview.loader.lastLoadUsedFile)
            compare(evaluate(preview.webView, "document.body.textContent.length"), limit - prefix + 1)
        }
    }
}
