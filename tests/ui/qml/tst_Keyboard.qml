import QtQuick
import QtTest
import Velino
import VelinoTest

// The main window with the keyboard alone: every control in the Tab order, in reading
// order, on screen when focused; Space and Return act; Tab never types into the record;
// the dialogs are answered from the keyboard and give the focus back.
Item {
    width: 200
    height: 200

    TestCase {
        id: testCase
        name: "Keyboard"
        when: windowShown

        property WindowDriver driver: WindowDriver {}
        property var window: null

        function init() {
            verify(TestSupport.resetSettings(), "settings wiped")
            window = driver.open()
            window.requestActivate()
            tryVerify(() => window.active, 5000)
            driver.unlock()
            tryVerify(() => driver.main() !== null, 5000, "main content")
            tryVerify(() => focusedName() === "field.recipientName", 3000,
                      "the client's name has the focus after unlocking")
            tryVerify(() => onScreen(window.activeFocusItem), 2000, "and is on screen")
            const preview = named("htmlPreview")
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000, "preview shown")
        }

        function cleanup() {
            driver.close()
            window = null
            wait(0)
        }

        function named(name) {
            const item = driver.findNamed(driver.main(), name)
            verify(item, name)
            return item
        }

        // The name of the focused control: its own objectName, or its nearest named
        // ancestor's ("field.subject" for the input inside that field).
        function focusedName() {
            for (let item = window.activeFocusItem; item; item = item.parent) {
                if (item.objectName)
                    return item.objectName
            }
            return ""
        }

        function press(key, modifiers) {
            TestSupport.keyClick(window, key, modifiers || 0)
            wait(0)
        }

        function onScreen(item) {
            const p = item.mapToItem(window.contentItem, 0, 0)
            if (p.x < -0.5 || p.y < -0.5 || p.x + item.width > window.contentItem.width + 0.5
                    || p.y + item.height > window.contentItem.height + 0.5)
                return false
            // Inside the form, also inside its scrolled viewport.
            const form = driver.main().composerPane
            for (let a = item; a; a = a.parent) {
                if (a === form) {
                    const q = item.mapToItem(form, 0, 0)
                    return q.y >= -0.5 && q.y + item.height <= form.height + 0.5
                }
            }
            return true
        }

        function test_tabVisitsEveryControlInReadingOrder() {
            const seen = []
            for (let i = 0; i < 160; ++i) {
                press(Qt.Key_Tab)
                const item = window.activeFocusItem
                const name = focusedName()
                if (name === "field.recipientName" && i > 0) {
                    seen.push(name)
                    break // round the whole window
                }
                if (name === "htmlPreview")
                    continue // the page's own links
                verify(onScreen(item), name + " fully on screen when focused")
                if (seen.indexOf(name) < 0)
                    seen.push(name)
            }
            // The walk began in the client's name: read it from the first header button.
            const start = seen.indexOf("newButton")
            verify(start >= 0, "newButton reached; seen: " + seen.join(", "))
            const cycle = seen.slice(start).concat(seen.slice(0, start))
            seen.length = 0
            for (const name of cycle)
                seen.push(name)
            const expected = ["newButton", "standalonePreviewButton", "exportButton", "openInMailButton",
                              "presetTile.devis", "presetTile.pret", "presetTile.rdv", "presetTile.relance",
                              "presetNameField", "field.recipientName", "field.recipientEmail", "field.subject",
                              "field.preheader", "syncCodeField", "pullButton", "pushButton", "webInterfaceLink",
                              "field.mailTitle", "field.mailIntro", "field.mailBody", "field.highlight",
                              "field.detailLabel1", "field.detailValue4", "field.ctaLabel", "field.ctaURL",
                              "field.closingNote", "openDraftButton", "field.logoURL", "field.accentPrimary",
                              "field.senderEmail", "field.footerNote",
                              "copySubjectButton", "copyTextButton", "copyMailButton"]
            let last = -1
            for (const name of expected) {
                const at = seen.indexOf(name)
                verify(at >= 0, name + " reached with Tab; seen: " + seen.join(", "))
                verify(at > last, name + " in reading order; seen: " + seen.join(", "))
                last = at
            }
            // The disabled buttons are skipped, not lost: they join once enabled.
            verify(seen.indexOf("saveAsNewButton") < 0 && seen.indexOf("updateLoadedButton") < 0)
        }

        function test_spaceReturnAndArrowsAct() {
            const store = window.controller.store
            // Return on a tile applies it; the arrows move between tiles.
            named("presetTile.devis").forceActiveFocus(Qt.TabFocusReason)
            press(Qt.Key_Right)
            compare(focusedName(), "presetTile.pret")
            press(Qt.Key_Return)
            compare(store.activePreset, "pret")
            press(Qt.Key_Left)
            compare(focusedName(), "presetTile.devis")
            press(Qt.Key_Space)
            compare(store.activePreset, "devis")
            // Space on a button, and the focus ring shows keyboard focus only.
            const copy = named("copySubjectButton")
            copy.forceActiveFocus(Qt.TabFocusReason)
            press(Qt.Key_Space)
            tryCompare(store, "lastAction", "Objet copie.")
            verify(driver.find(copy, (i) => i.shown === true && i.border !== undefined), "focus ring shown")
            named("copyTextButton").forceActiveFocus(Qt.MouseFocusReason)
            verify(!driver.find(named("copyTextButton"), (i) => i.shown === true && i.border !== undefined),
                   "no ring after a click")
            press(Qt.Key_Return)
            tryCompare(store, "lastAction", "Version texte copiee.")
        }

        function test_tabLeavesEditorsWithoutTypingIntoTheRecord() {
            const store = window.controller.store
            for (const field of ["mailIntro", "mailBody", "closingNote", "footerNote"]) {
                const before = store.data[field]
                const editor = named("field." + field).editor
                editor.forceActiveFocus(Qt.TabFocusReason)
                editor.cursorPosition = 3
                press(Qt.Key_Tab)
                verify(!editor.activeFocus, field + ": Tab leaves")
                editor.forceActiveFocus(Qt.TabFocusReason)
                press(Qt.Key_Backtab, Qt.ShiftModifier)
                verify(!editor.activeFocus, field + ": Shift+Tab leaves")
                compare(editor.text, before, field + " shown unchanged")
                compare(store.data[field], before, field + " unchanged in the record")
            }
        }

        function test_pageKeysScrollTheForm() {
            const flick = driver.main().composerPane.scrollView.contentItem
            named("openDraftButton").forceActiveFocus(Qt.TabFocusReason)
            verify(onScreen(named("openDraftButton")), "focused button revealed")
            press(Qt.Key_Home, Qt.ControlModifier)
            compare(flick.contentY, 0)
            press(Qt.Key_PageDown)
            verify(flick.contentY > flick.height / 2, "a page down: " + flick.contentY)
            press(Qt.Key_End, Qt.ControlModifier)
            fuzzyCompare(flick.contentY, flick.contentHeight - flick.height, 1)
            press(Qt.Key_PageUp)
            verify(flick.contentY < flick.contentHeight - flick.height - flick.height / 2)
        }

        function test_resetDialogFromTheKeyboard() {
            const store = window.controller.store
            const opener = named("newButton")
            opener.forceActiveFocus(Qt.TabFocusReason)
            store.setDataField("subject", "Objet a oublier")
            press(Qt.Key_Return)
            const alert = window.resetAlert
            tryVerify(() => alert.opened, 3000)
            tryVerify(() => driver.find(alert.contentItem, (i) => i.objectName === "resetCancelButton").activeFocus,
                      2000, "Annuler has the focus")
            // Escape cancels and gives the focus back.
            press(Qt.Key_Escape)
            tryVerify(() => !alert.visible)
            tryVerify(() => opener.activeFocus, 2000, "focus back on Nouveau")
            compare(store.data.subject, "Objet a oublier")
            // Tab to "Reinitialiser", Return confirms.
            press(Qt.Key_Return)
            tryVerify(() => alert.opened, 3000)
            press(Qt.Key_Tab)
            verify(driver.find(alert.contentItem, (i) => i.objectName === "resetConfirmButton").activeFocus)
            press(Qt.Key_Return)
            tryVerify(() => !alert.visible)
            compare(store.data.subject, "Votre devis Korvel est pret")
            tryVerify(() => opener.activeFocus, 2000, "focus back on Nouveau")
        }

        function rows() {
            const list = named("customPresetList")
            const found = []
            for (let i = 0; i < list.count; ++i) {
                const item = list.itemAtIndex(i)
                if (item)
                    found.push(item.children[0])
            }
            return found
        }

        // Deleting from the keyboard leaves the focus on the next row, then on the name field.
        function test_focusAfterDeletingPresets() {
            const store = window.controller.store
            for (const name of ["Premier", "Deuxieme", "Troisieme"]) {
                store.customPresetDraftName = name
                store.saveAsNewCustomPreset()
            }
            tryVerify(() => rows().length === 3, 3000)
            for (let left = 3; left > 0; --left) {
                const remove = driver.find(rows()[left > 1 ? 1 : 0], (i) => i.objectName === "removeButton")
                verify(remove.Accessible.name.startsWith("Supprimer : "), remove.Accessible.name)
                remove.forceActiveFocus(Qt.TabFocusReason)
                press(Qt.Key_Space)
                tryVerify(() => rows().length === left - 1, 3000)
                if (left > 1) {
                    tryVerify(() => focusedName() === "loadButton", 2000, "focus on a row's Charger")
                    verify(onScreen(window.activeFocusItem))
                } else {
                    tryVerify(() => focusedName() === "presetNameField", 2000, "focus on the name field")
                }
            }
        }

        function test_menusOpenFromTheKeyboard() {
            press(Qt.Key_F10)
            const edit = window.menuBar.menuAt(0)
            tryVerify(() => edit.opened, 2000, "F10 opens Edition")
            press(Qt.Key_Escape)
            tryVerify(() => !edit.visible)
            press(Qt.Key_F, Qt.AltModifier)
            tryVerify(() => window.menuBar.menuAt(1).opened, 2000, "Alt+F opens Fenetre")
            press(Qt.Key_Escape)
        }
    }
}
