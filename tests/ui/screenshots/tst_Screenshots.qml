import QtQuick
import QtTest
import Velino
import VelinoTest

// Not a test: the window in the states worth looking at, saved as PNGs in the folder
// named by VELINO_SCREENSHOT_DIR (scripts/screenshots runs it).
Item {
    width: 200
    height: 200

    TestCase {
        name: "Screenshots"
        when: windowShown

        property var window: null
        readonly property string folder: TestSupport.environment("VELINO_SCREENSHOT_DIR")

        function find(item, test) {
            if (!item)
                return null
            if (test(item))
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = find(item.children[i], test)
                if (found)
                    return found
            }
            return null
        }

        function main() {
            const loader = find(window.contentItem, (i) => i.objectName === "mainLoader")
            return loader ? loader.item : null
        }

        function shot(name) {
            wait(150)
            waitForRendering(window.contentItem)
            const path = folder + "/" + name + ".png"
            grabImage(window.contentItem).save(path)
            verify(TestSupport.fileExists(path), path)
            console.log(path)
        }

        function scrollFormTo(y) {
            const flick = main().composerPane.scrollView.contentItem
            flick.contentY = Math.max(0, Math.min(y, flick.contentHeight - flick.height))
            return flick
        }

        function scrollFormToItem(name) {
            const item = find(main(), (i) => i.objectName === name)
            verify(item, name)
            const flick = main().composerPane.scrollView.contentItem
            scrollFormTo(item.mapToItem(flick.contentItem, 0, 0).y - 24)
        }

        function initTestCase() {
            verify(folder.length > 0, "VELINO_SCREENSHOT_DIR")
            verify(TestSupport.resetSettings())
            window = AppShell.openWindow()
            window.lockState.password = "Falcon77!"
            window.lockState.unlock()
            tryVerify(() => main() !== null, 5000)
            const preview = find(main(), (i) => i.objectName === "htmlPreview")
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000)
            wait(500)
        }

        function test_1_formScrolledThrough() {
            const flick = scrollFormTo(0)
            let page = 1
            for (;;) {
                shot("form-" + page)
                if (flick.contentY + flick.height >= flick.contentHeight - 1)
                    break
                scrollFormTo(flick.contentY + flick.height - 80)
                page += 1
            }
            scrollFormTo(0)
        }

        function test_2_longPresetNameAndStatus() {
            const store = window.controller.store
            store.customPresetDraftName = "Devis iPhone ecran casse et batterie gonflee pour Mme Lambert 0"
            store.saveAsNewCustomPreset()
            scrollFormToItem("customPresetCard")
            shot("preset-long-name")
        }

        function test_3_syncCard() {
            window.controller.store.syncCode = "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
            scrollFormToItem("syncCard")
            shot("sync-card")
        }

        function test_4_alertOverThePreview() {
            window.controller.store.syncCode = "abc"
            window.controller.store.pushToWeb()
            tryVerify(() => window.warningAlert.opened, 3000)
            shot("alert")
            while (window.controller.dialogs.alertVisible)
                window.controller.dialogs.dismissAlert()
        }

        function test_6_keyboardFocus() {
            scrollFormTo(0)
            const named = (name) => find(main(), (i) => i.objectName === name)
            named("exportButton").forceActiveFocus(Qt.TabFocusReason)
            shot("focus-button")
            named("presetTile.rdv").forceActiveFocus(Qt.TabFocusReason)
            shot("focus-tile")
            named("field.recipientEmail").field.forceActiveFocus(Qt.TabFocusReason)
            shot("focus-field")
            window.controller.requestReset()
            tryVerify(() => window.resetAlert.opened, 3000)
            shot("focus-dialog-button")
            window.controller.cancelReset()
        }

        function test_7_previewModes() {
            const pane = main().previewPane
            const preview = find(main(), (i) => i.objectName === "htmlPreview")
            const names = ["bureau", "telephone", "sombre", "sans-images"]
            for (let mode = 0; mode < names.length; ++mode) {
                pane.previewMode.mode = mode
                wait(300)
                tryVerify(() => !preview.webView.loading, 10000)
                wait(500)
                shot("mode-" + names[mode])
            }
            pane.previewMode.mode = 0
        }

        function test_5_previewScrolledAfterAnEdit() {
            const preview = find(main(), (i) => i.objectName === "htmlPreview")
            let done = false
            preview.webView.runJavaScript("window.scrollTo(0, document.documentElement.scrollHeight); 0", () => done = true)
            tryVerify(() => done, 5000)
            wait(300)
            const store = window.controller.store
            store.setDataField("closingNote", store.data.closingNote + " Merci !")
            tryVerify(() => store.generatedHTML.indexOf("Merci !") >= 0, 3000)
            wait(800)
            shot("preview-after-edit")
        }
    }
}
