import QtQuick
import QtTest
import QtWebEngine
import Velino
import VelinoTest

TestCase {
    id: scene
    name: "HTMLPreviewView"
    when: windowShown
    visible: true
    width: 700
    height: 500

    Component { id: previewComponent; HTMLPreviewView { anchors.fill: parent } }

    function page(title, body) {
        return "<!DOCTYPE html>\n<html lang=\"fr\">\n<head>\n<meta charset=\"utf-8\">" +
            "<meta name=\"viewport\" content=\"width=device-width\"><title>" +
            title + "</title></head><body style=\"margin:0\">" + body + "</body></html>"
    }

    function tallHtml(paragraphs) {
        return page("Long " + paragraphs,
                    "<p style=\"height:40px;margin:0\">Ligne</p>".repeat(paragraphs))
    }

    function evaluate(view, script) {
        let answer
        view.runJavaScript(script, (result) => answer = { result })
        tryVerify(() => answer, 10000, "script answered: " + script)
        return answer.result
    }

    function loadAndWait(view, action) {
        const spy = Object.assign(createTemporaryQmlObject("import QtTest; SignalSpy {}", scene),
                                  { target: view, signalName: "loadingChanged" })
        action()
        const finished = () => spy.signalArguments.map(a => a[0].status)
                                  .find(s => s !== WebEngineView.LoadStartedStatus)
        tryVerify(() => finished() !== undefined, 20000, "load finished")
        return finished()
    }

    // Hidden until the first page is loaded (reloads do not hide it: no flash).
    function makePreview(properties) {
        const preview = createTemporaryObject(previewComponent, scene, properties)
        verify(preview.webView.opacity === 0 || preview.loader.hasShownPage, "hidden at first")
        tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000,
                  "first page shown")
        return preview
    }

    // A reload keeps the reading position, in proportion to the page's height; top stays top.
    function test_reloadKeepsTheReadingPosition() {
        const preview = makePreview({ html: tallHtml(100) }), view = preview.webView
        const scrollable = "(document.documentElement.scrollHeight - window.innerHeight)"
        const position = () => evaluate(view, "window.scrollY / " + scrollable)
        loadAndWait(view, () => preview.html = tallHtml(101))
        compare(evaluate(view, "window.scrollY"), 0, "top stays top")
        evaluate(view, "window.scrollTo(0, 0.6 * " + scrollable + "); 0")
        tryVerify(() => Math.abs(view.scrollPosition.y
                                 / (view.contentsSize.height - view.height) - 0.6) < 0.01,
                  5000, "scroll known to the view")
        for (const paragraphs of [100, 200]) {
            loadAndWait(view, () => preview.html = tallHtml(paragraphs))
            tryVerify(() => Math.abs(position() - 0.6) < 0.02, 5000,
                      paragraphs + " paragraphs: " + position())
        }
    }

    // Links resolve on the service host (the file route's <base>: preview_loader_test); a new
    // host reloads, the page shown all along.
    function test_pageHasTheHttpsBaseOfTheServiceHost() {
        const preview = makePreview({ html: page("Petit", "<p id='t'>Votre appareil est pret</p>"
                                                 + "<a id='rel' href='velino.html'>lien</a>") })
        const shown = "[document.getElementById('t').textContent, document.baseURI, " +
                      "document.getElementById('rel').href, document.characterSet]"
        compare(evaluate(preview.webView, shown),
                ["Votre appareil est pret", "https://korvel.example/",
                 "https://korvel.example/velino.html", "UTF-8"])
        compare(loadAndWait(preview.webView, () => {
            preview.serviceHost = "atelier.example"
            compare(preview.webView.opacity, 1)
        }), WebEngineView.LoadSucceededStatus)
        compare(evaluate(preview.webView, "document.baseURI"), "https://atelier.example/")
    }

    // The limit is QtWebEngine's own (where the preview turns to a file: preview_loader_test).
    function test_dataUrlLimitMatchesTheWebEngine() {
        const loader = makePreview({ html: "" }).loader
        const fitting = "a".repeat(loader.maxDataUrlLength - loader.dataUrlLengthOf(""))
        for (const [html, status] of [[fitting, WebEngineView.LoadSucceededStatus],
                                      [fitting + "a", WebEngineView.LoadFailedStatus]]) {
            const raw = createTemporaryQmlObject(
                "import QtWebEngine; WebEngineView { anchors.fill: parent }", scene)
            compare(loadAndWait(raw, () => raw.loadHtml(html, "https://korvel.example")),
                    status)
        }
    }

    // A page with an image from `url`, in `mode`. No HTTPS base: the test's image server speaks
    // plain HTTP on loopback.
    function showIn(mode, url) {
        const img = "<img alt=\"Logo Korvel\" src=\"" + url + "\" width=\"8\" height=\"8\">"
        return makePreview({ html: page("Mode", img + "<p>Bonjour</p>"), mode, serviceHost: "" })
    }

    function test_phoneIsNarrowAndDarkInvertsAllButPictures() {
        const phone = showIn(PreviewMode.Phone, "data:,")
        compare([evaluate(phone.webView, "window.innerWidth"), phone.webView.x],
                [375, (scene.width - 375) / 2], "narrow, centred")
        const dark = showIn(PreviewMode.Dark, "data:,")
        for (const element of ["document.documentElement", "document.images[0]"])
            verify(String(evaluate(dark.webView, "getComputedStyle(" + element + ").filter"))
                   .indexOf("invert(1)") >= 0, element)
    }

    function test_imagesAreRequestedExceptWithoutImages() {
        const port = TestSupport.startImageServer(), before = TestSupport.imageRequests()
        verify(port > 0)
        const blocked = showIn(PreviewMode.NoImages, "http://127.0.0.1:" + port + "/logo.png?a")
        wait(500)
        compare(TestSupport.imageRequests(), before, "no request without images")
        compare(evaluate(blocked.webView, "document.images[0].naturalWidth"), 0)
        // Out of "Sans images", the shown page reloads with its image.
        blocked.mode = PreviewMode.Desktop
        tryVerify(() => TestSupport.imageRequests() === before + 1, 5000,
                  "requested once allowed")
    }

    function test_sizeLine() {
        for (const [bytes, text, clipped] of [[12165, "12", false], [102 * 1024, "102", false],
                                              [102 * 1024 + 1, "102", true]])
            compare([UiHelpers.mailSizeText(bytes), UiHelpers.isClippedByGmail(bytes)],
                    ["Taille du mail : " + text + " Ko", clipped])
    }
}
