import QtQuick
import QtQuick.Controls
import QtTest
import VelinoTest

// The main window's layout measured at the sizes a user gives it.
WindowTestCase {
    name: "Layout"
    unlockEachTest: true

    function setWidth(width) {
        t.window.width = width
        tryCompare(t.window, "width", width)
        waitForRendering(t.main)
    }

    function verifyWhole(names, within) {
        for (const item of names.map(name => typeof name === "string" ? el(t, name) : name))
            verify(item.width >= item.implicitWidth - 0.5 && (!within || inside(item, within)),
                   item.objectName + " whole " + JSON.stringify(box(item)) + " in "
                   + within?.objectName)
    }

    function test_widths_data() {
        return [1320, 1700, 1900, 2200].map(width => ({ tag: String(width), width: width }))
    }

    // At each width: an editor follows its text's height, the sync code and its buttons are
    // whole, the form and the preview side by side.
    function test_widths(data) {
        setWidth(data.width)
        const editor = el(t, "field.closingNote").editor
        for (const [text, high, when] of [
                 ["Ligne de fin\n".repeat(14), (h) => h > 200, "fourteen lines"],
                 ["Une seule ligne.", (h) => h < 120, "back to one line"]]) {
            t.store.setDataField("closingNote", text)
            tryVerify(() => high(editor.height), 3000, when)
        }
        const field = el(t, "syncCodeField")
        t.store.syncCode = "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
        tryCompare(field.field, "text", t.store.syncCode)
        waitForRendering(t.main)
        verify(field.field.contentWidth <= field.field.width && field.width >= field.labelWidth,
               "code and label whole")
        compare([el(t, "pullButton").height, el(t, "pushButton").height],
                Array(2).fill(el(t, "exportButton").height), "on one line")
        verify(inside(el(t, "pushButton"), el(t, "syncCard")), "push button inside its card")
        const [form, preview] = [t.main.composerPane, t.main.previewPane]
        verify(form.width >= 540 && preview.width >= 620 && form.x + form.width <= preview.x,
               form.width + ", " + preview.width)
    }

    // A 63-character preset name, shown in the status chip too, leaves the buttons whole.
    function test_longPresetNameLeavesTheButtonsWhole() {
        setWidth(1320)
        const name = "Devis iPhone ecran casse et batterie gonflee pour Mme Lambert 0"
        savePreset(t, name)
        const row = presetRow(t, t.store.customPresets[0].id)
        tryVerify(() => row.isActive, 3000, "row of the saved preset")
        const chip = named(row, "activeChip"), label = named(row, "presetName")
        waitForRendering(t.main)
        verify(chip.visible && label.truncated && label.ToolTip.text === name,
               "chip shown, long name shortened, whole in its tooltip")
        verifyWhole(["loadButton", "overwriteButton", "removeButton", "activeChip"]
                    .map(part => named(row, part)), row)
        verify(box(label).right <= box(chip).x, "name ends before the chip")
        verifyWhole(["newButton", "standalonePreviewButton", "exportButton", "openInMailButton"],
                    el(t, "headerBand"))
        verifyWhole(["formatChip", "saveChip"])
        verify(box(el(t, "actionChip")).right <= box(el(t, "newButton")).x,
               "chips end before the buttons")
    }
}
