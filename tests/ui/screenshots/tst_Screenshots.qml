import QtQuick
import QtTest
import Velino
import VelinoTest

// Not a test: the window in states named by scripts/screenshots, as PNGs in VELINO_SCREENSHOT_DIR.
Item {
    width: 200
    height: 200

    TestCase {
        name: "Screenshots"
        when: windowShown

        readonly property string folder: TestSupport.environment("VELINO_SCREENSHOT_DIR")
        property var window: null
        readonly property var store: window ? window.controller.store : null

        function main() { return findChild(window.contentItem, "mainLoader")?.item ?? null }
        function named(name) { const item = findChild(main(), name); return verify(item, name), item }

        function shot(name) {
            wait(150)
            waitForRendering(window.contentItem)
            const path = folder + "/" + name + ".png"
            grabImage(window.contentItem).save(path)
            verify(TestSupport.fileExists(path), path)
            console.log(path)
        }

        // Scrolls the form to `y`, or to just above the item of that name.
        function scrollFormTo(y) {
            const flick = main().composerPane.scrollView.contentItem
            if (typeof y === "string")
                y = named(y).mapToItem(flick.contentItem, 0, 0).y - 24
            flick.contentY = Math.max(0, Math.min(y, flick.contentHeight - flick.height))
            return flick
        }

        function initTestCase() {
            verify(folder.length > 0 && TestSupport.resetSettings(), "VELINO_SCREENSHOT_DIR")
            window = AppShell.openWindow()
            window.lockState.password = "Falcon77!"
            window.lockState.unlock()
            tryVerify(() => main() !== null, 5000)
            const preview = named("htmlPreview")
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000)
            wait(500)
        }

        function test_1_formScrolledThrough() {
            for (let page = 1, flick = scrollFormTo(0); ; ++page) {
                shot("form-" + page)
                if (flick.contentY + flick.height >= flick.contentHeight - 1)
                    break
                scrollFormTo(flick.contentY + flick.height - 80)
            }
            scrollFormTo(0)
        }

        function test_2_cards() {
            store.customPresetDraftName = "Devis iPhone ecran casse et batterie gonflee pour Mme Lambert 0"
            store.saveAsNewCustomPreset()
            scrollFormTo("customPresetCard")
            shot("preset-long-name")
            store.syncCode = "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
            scrollFormTo("syncCard")
            shot("sync-card")
            store.syncCode = "abc"
            store.pushToWeb()
            tryVerify(() => window.warningAlert.opened, 3000)
            shot("alert")
            window.controller.dialogs.dismissAlert()
        }

        function test_3_previewScrolledAfterAnEdit() {
            let done = false
            named("htmlPreview").webView.runJavaScript("window.scrollTo(0, document.documentElement.scrollHeight); 0", () => done = true)
            tryVerify(() => done, 5000)
            wait(300)
            store.setDataField("closingNote", store.data.closingNote + " Merci !")
            tryVerify(() => store.generatedHTML.indexOf("Merci !") >= 0, 3000)
            wait(800)
            shot("preview-after-edit")
        }
    }
}
