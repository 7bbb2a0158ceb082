import QtQuick
import QtQuick.Controls
import QtTest
import Velino
import VelinoTest

// The main window's layout measured at the sizes a user gives it: editors as high as
// their text, rows and header buttons whole next to long texts, the sync card wide
// enough for a whole code, and dialogs that hide what is under them.
Item {
    width: 200
    height: 200

    TestCase {
        id: testCase
        name: "Layout"
        when: windowShown

        property WindowDriver driver: WindowDriver {}
        property var window: null

        function init() {
            verify(TestSupport.resetSettings(), "settings wiped")
            window = driver.open()
            driver.unlock()
            tryVerify(() => driver.main() !== null, 5000, "main content")
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

        function setWidth(width) {
            window.width = width
            tryCompare(window, "width", width)
            waitForRendering(driver.main())
        }

        // The item's rectangle in the window's content.
        function box(item) {
            const p = item.mapToItem(window.contentItem, 0, 0)
            return { x: p.x, y: p.y, right: p.x + item.width, bottom: p.y + item.height }
        }

        function verifyInside(inner, outer, what) {
            const a = box(inner)
            const b = box(outer)
            verify(a.x >= b.x - 0.5 && a.right <= b.right + 0.5 && a.y >= b.y - 0.5 && a.bottom <= b.bottom + 0.5,
                   what + ": " + JSON.stringify(a) + " inside " + JSON.stringify(b))
        }

        function test_editorsAreAsHighAsTheirText_data() {
            return [{ tag: "1320", width: 1320 }, { tag: "1900", width: 1900 }]
        }

        function test_editorsAreAsHighAsTheirText(data) {
            setWidth(data.width)
            const store = window.controller.store
            const editors = [["mailIntro", 90], ["mailBody", 150], ["closingNote", 96], ["footerNote", 84]]
            const check = (when) => {
                waitForRendering(driver.main())
                for (const [field, minimum] of editors) {
                    const wrapper = named("field." + field)
                    const editor = wrapper.editor
                    const content = editor.contentHeight + editor.topPadding + editor.bottomPadding
                    const line = editor.font.pixelSize * 1.6
                    verify(editor.height >= minimum, field + " at least its minimum (" + when + ")")
                    verify(editor.height <= Math.max(minimum, content + line),
                           field + " " + editor.height + " high for " + content + " of text (" + when + ")")
                    verify(wrapper.height <= editor.y + editor.height + 0.5,
                           field + " takes no height beyond its editor (" + when + ")")
                }
                // The cards hold their content and nothing more.
                for (const card of ["messageCard", "actionCard", "identityCard"]) {
                    const item = named(card)
                    verify(item.height <= item.implicitHeight + 0.5, card + " (" + when + ")")
                }
            }
            check("default texts")
            store.setDataField("closingNote", "Ligne de fin\n".repeat(14))
            tryVerify(() => named("field.closingNote").editor.height > 200)
            check("fourteen lines")
            store.setDataField("closingNote", "Une seule ligne.")
            tryVerify(() => named("field.closingNote").editor.height < 120)
            check("back to one line")
        }

        function test_longPresetNameLeavesItsButtonsAndChip() {
            setWidth(1320)
            const store = window.controller.store
            const name = "Devis iPhone ecran casse et batterie gonflee pour Mme Lambert 0"
            compare(name.length, 63)
            store.customPresetDraftName = name
            store.saveAsNewCustomPreset()
            const rowOf = () => driver.find(driver.main(), (i) => String(i.objectName).startsWith("customPresetRow."))
            tryVerify(() => rowOf() !== null, 3000, "row of the saved preset")
            const row = rowOf()
            tryVerify(() => row.isActive)
            waitForRendering(driver.main())
            const buttons = driver.find(row, (i) => i.objectName === "presetButtons")
            for (const button of ["loadButton", "overwriteButton", "removeButton"]) {
                const b = driver.find(buttons, (i) => i.objectName === button)
                verifyInside(b, row, button)
                verify(b.width >= b.implicitWidth - 0.5, button + " whole")
            }
            const chip = driver.find(row, (i) => i.objectName === "activeChip")
            verify(chip.visible)
            verifyInside(chip, row, "Charge chip")
            verify(chip.width >= chip.implicitWidth - 0.5, "chip whole")
            const label = driver.find(row, (i) => i.objectName === "presetName")
            verify(label.truncated, "long name shortened")
            compare(label.ToolTip.text, name)
            verify(box(label).right <= box(chip).x, "name ends before the chip")
            verify(driver.find(row, (i) => i.objectName === "removeButton").destructive)
        }

        function test_longStatusKeepsTheHeaderButtonsWhole() {
            setWidth(1320)
            const store = window.controller.store
            store.customPresetDraftName = "Rendez-vous reparation ecran et batterie atelier"
            store.saveAsNewCustomPreset()
            verify(store.lastAction.length > 60, store.lastAction)
            waitForRendering(driver.main())
            const header = named("headerBand")
            for (const button of ["newButton", "standalonePreviewButton", "exportButton", "openInMailButton"]) {
                const b = named(button)
                verifyInside(b, header, button)
                verify(b.width >= b.implicitWidth - 0.5, button + " whole")
            }
            const chip = named("actionChip")
            verify(box(chip).right <= box(named("newButton")).x, "chips end before the buttons")
            for (const whole of ["formatChip", "saveChip"])
                verify(named(whole).width >= named(whole).implicitWidth - 0.5, whole + " whole")
        }

        function test_syncCardShowsAWholeCode_data() {
            return [{ tag: "1320", width: 1320 }, { tag: "1700", width: 1700 }, { tag: "2200", width: 2200 }]
        }

        function test_syncCardShowsAWholeCode(data) {
            setWidth(data.width)
            const code = "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
            window.controller.store.syncCode = code
            const field = named("syncCodeField")
            tryCompare(field.field, "text", code)
            waitForRendering(driver.main())
            verify(field.field.contentWidth <= field.field.width, "code whole in its field")
            verify(field.width >= field.labelWidth, "label whole")
            const pull = named("pullButton")
            const push = named("pushButton")
            compare(pull.height, named("exportButton").height, "pull button on one line")
            compare(push.height, named("exportButton").height, "push button on one line")
            verifyInside(push, named("syncCard"), "push button")
            verify(named("previewPane").width >= 620, "preview keeps its minimum")
        }

        // What is under an alert does not show through it.
        function test_alertsAreOpaque() {
            setWidth(1320)
            const alert = window.warningAlert
            window.controller.store.syncCode = "abc"
            window.controller.store.pushToWeb()
            tryVerify(() => alert.opened, 3000)
            waitForRendering(window.contentItem)
            const at = alert.background.mapToItem(window.contentItem, alert.background.width - 12,
                                                  alert.background.height / 2)
            const before = grabImage(window.contentItem).pixel(at.x, at.y)
            driver.main().visible = false
            waitForRendering(window.contentItem)
            const after = grabImage(window.contentItem).pixel(at.x, at.y)
            driver.main().visible = true
            compare(String(after), String(before), "the alert's surface at " + at.x + "," + at.y)
            window.controller.dialogs.dismissAlert()
        }
    }
}
