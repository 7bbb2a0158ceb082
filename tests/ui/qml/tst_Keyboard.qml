import QtQuick
import QtTest
import VelinoTest

// The main window with the keyboard alone: Tab reaches every control in reading order, on
// screen; keys act; dialogs are answered from the keyboard and give the focus back.
WindowTestCase {
    name: "Keyboard"
    unlockEachTest: true

    // The focused control's objectName, or its nearest named ancestor's ("field.subject" for its
    // input).
    function focusedName() {
        let item = t.window.activeFocusItem
        while (item && !item.objectName)
            item = item.parent
        return item ? item.objectName : ""
    }

    function press(key, modifiers) {
        TestSupport.keyClick(t.window, key, modifiers || 0)
        wait(0)
    }

    function focusOn(name) {
        el(t, name).forceActiveFocus(Qt.TabFocusReason)
    }

    function test_tabVisitsEveryControlInReadingOrder() {
        tryVerify(() => onScreen(t, t.window.activeFocusItem), 2000,
                  "the client's name, focused after unlocking, on screen")
        focusOn("newButton")
        const seen = ["newButton"]
        for (let i = 0; i < 160 && focusedName() !== "newButton" || i === 0; ++i) {
            press(Qt.Key_Tab)
            const name = focusedName()
            if (name === "htmlPreview")
                continue // the page's own links
            verify(onScreen(t, t.window.activeFocusItem), name + " fully on screen when focused")
            if (!seen.includes(name))
                seen.push(name)
        }
        compare(focusedName(), "newButton",
                "Tab goes round the whole window; seen: " + seen.join(", "))
        const expected = `newButton standalonePreviewButton exportButton openInMailButton
            presetTile.devis presetTile.pret presetTile.rdv presetTile.relance presetNameField
            field.recipientName field.recipientEmail field.subject field.preheader syncCodeField
            pullButton pushButton webInterfaceLink field.mailTitle field.mailIntro field.mailBody
            field.highlight field.detailLabel1 field.detailValue4 field.ctaLabel field.ctaURL
            field.closingNote openDraftButton field.logoURL field.accentPrimary field.senderEmail
            field.footerNote copySubjectButton copyTextButton copyMailButton`.split(/\s+/)
        compare(seen.filter(name => expected.includes(name)), expected,
                "reached with Tab, in reading order")
        // The disabled buttons are skipped, not lost: they join once enabled.
        verify(!seen.includes("saveAsNewButton") && !seen.includes("updateLoadedButton"))
    }

    function test_spaceReturnAndArrowsAct() {
        focusOn("presetTile.devis")
        for (const [key, focused, active] of [[Qt.Key_Right, "pret", "devis"],
                                              [Qt.Key_Return, "pret", "pret"],
                                              [Qt.Key_Left, "devis", "pret"],
                                              [Qt.Key_Space, "devis", "devis"]]) {
            press(key)
            compare([focusedName(), t.store.activePreset], ["presetTile." + focused, active])
        }
        // The preview modes: the arrows move the choice and the focus with it, up to the ends.
        focusOn("segment.0")
        for (const index of [1, 0, 0]) {
            press(index ? Qt.Key_Right : Qt.Key_Left)
            compare([focusedName(), el(t, "previewModes").currentIndex],
                    ["segment." + index, index])
        }
        focusOn("copySubjectButton")
        verify(find(el(t, "copySubjectButton"), (i) => i.shown === true && i.border !== undefined),
               "focus ring")
        press(Qt.Key_Space)
        tryCompare(t.store, "lastAction", "Objet copie.")
    }

    // Tab and Shift+Tab leave a text editor and type nothing into it.
    function test_tabLeavesEditors() {
        for (const name of ["mailIntro", "mailBody", "closingNote", "footerNote"]) {
            const before = t.store.data[name], editor = el(t, "field." + name).editor
            for (const [key, modifiers] of [[Qt.Key_Tab, 0], [Qt.Key_Backtab, Qt.ShiftModifier]]) {
                editor.forceActiveFocus(Qt.TabFocusReason)
                editor.cursorPosition = 3
                press(key, modifiers)
                verify(!editor.activeFocus, name + " left with " + key)
            }
            compare([editor.text, t.store.data[name]], [before, before],
                    name + " unchanged on screen and in the record")
        }
    }

    // "Nouveau" asks first: Escape or "Annuler" keep the content, "Reinitialiser" brings back the
    // base template.
    function test_resetAsksFirst() {
        const alert = t.window.resetAlert, opener = el(t, "newButton")
        typeInto(t, "field.subject", " modifie")
        const ask = () => {
            opener.forceActiveFocus(Qt.TabFocusReason)
            press(Qt.Key_Return)
            tryVerify(() => alert.opened && t.controller.showResetAlert, 3000)
            tryVerify(() => named(alert.contentItem, "resetCancelButton").activeFocus, 2000,
                      "Annuler has the focus")
        }
        const answered = () => tryVerify(
            () => !alert.visible && !t.controller.showResetAlert && opener.activeFocus, 2000,
            "closed, focus back on Nouveau")
        for (const key of [Qt.Key_Escape, Qt.Key_Space]) {
            ask()
            press(key)
            answered()
            compare(el(t, "field.subject").field.text, defaultSubject + " modifie")
        }
        focusOn("presetTile.relance")
        press(Qt.Key_Return)
        ask()
        press(Qt.Key_Tab)
        verify(named(alert.contentItem, "resetConfirmButton").activeFocus)
        press(Qt.Key_Return)
        answered()
        compare([el(t, "field.subject").field.text, el(t, "field.mailTitle").field.text,
                 el(t, "presetTile.devis").isActive],
                [defaultSubject, "Votre devis est pret", true])
    }

    // Deleting from the keyboard leaves the focus on the next row, then on the name field.
    function test_focusAfterDeletingPresets() {
        ["Premier", "Deuxieme", "Troisieme"].forEach(name => savePreset(t, name))
        const list = el(t, "customPresetList")
        tryVerify(() => list.count === 3 && list.itemAtIndex(2), 3000)
        for (let left = 3; left > 0; --left) {
            const remove = named(list.itemAtIndex(left > 1 ? 1 : 0), "removeButton")
            verify(remove.Accessible.name.startsWith("Supprimer : "), remove.Accessible.name)
            remove.forceActiveFocus(Qt.TabFocusReason)
            press(Qt.Key_Space)
            tryCompare(list, "count", left - 1, 3000)
            const next = left > 1 ? "loadButton" : "presetNameField"
            tryVerify(() => focusedName() === next, 2000, "focus on " + next)
            verify(onScreen(t, t.window.activeFocusItem))
        }
    }

    function test_menusOpenFromTheKeyboard() {
        for (const [key, modifiers, index] of [[Qt.Key_F10, 0, 0], [Qt.Key_F, Qt.AltModifier, 1]]) {
            const menu = t.window.menuBar.menuAt(index)
            press(key, modifiers)
            tryVerify(() => menu.opened, 2000, index ? "Alt+F opens Fenetre" : "F10 opens Edition")
            press(Qt.Key_Escape)
            tryVerify(() => !menu.visible)
        }
    }
}
