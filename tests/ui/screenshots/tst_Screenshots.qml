import QtQuick
import QtTest
import VelinoTest
import "../qml"

// Not a test: the window in states named by scripts/screenshots, as PNGs in VELINO_SCREENSHOT_DIR.
WindowTestCase {
    name: "Screenshots"

    readonly property string folder: TestSupport.environment("VELINO_SCREENSHOT_DIR")

    // One window for every shot, on the real service host.
    function initTestCase() {
        verify(folder.length > 0 && TestSupport.resetSettings(), "VELINO_SCREENSHOT_DIR")
        t = openUnlocked()
        wait(500)
    }
    function init() {}
    function cleanup() {}

    function shot(name) {
        wait(150)
        waitForRendering(t.window.contentItem)
        grabImage(t.window.contentItem).save(folder + "/" + name + ".png")
        console.log(folder + "/" + name + ".png")
    }

    function test_1_formScrolledThrough() {
        const flick = t.main.composerPane.scrollView.contentItem
        flick.contentY = 0
        for (let page = 1; ; ++page) {
            shot("form-" + page)
            if (flick.contentY + flick.height >= flick.contentHeight - 1)
                break
            flick.contentY = Math.min(flick.contentY + flick.height - 80,
                                      flick.contentHeight - flick.height)
        }
        flick.contentY = 0
    }

    function test_2_cards() {
        savePreset(t, "Devis iPhone ecran casse et batterie gonflee pour Mme Lambert 0")
        reveal(t, el(t, "customPresetCard"), 24)
        shot("preset-long-name")
        t.store.syncCode = "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
        reveal(t, el(t, "syncCard"), 24)
        shot("sync-card")
        t.store.syncCode = "abc"
        t.store.pushToWeb()
        tryVerify(() => t.window.warningAlert.opened, 3000)
        shot("alert")
        t.controller.dialogs.dismissAlert()
    }

    function test_3_previewScrolledAfterAnEdit() {
        let done = false
        el(t, "htmlPreview").webView.runJavaScript(
            "window.scrollTo(0, document.documentElement.scrollHeight); 0", () => done = true)
        tryVerify(() => done, 5000)
        wait(300)
        t.store.setDataField("closingNote", t.store.data.closingNote + " Merci !")
        tryVerify(() => t.store.generatedHTML.indexOf("Merci !") >= 0, 3000)
        wait(800)
        shot("preview-after-edit")
    }
}
