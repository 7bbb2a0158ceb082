import QtQuick
import QtTest
import Velino
import VelinoTest

// A test of the application's real windows (settings in a temporary folder, wiped before each
// test); keys go to those windows, not to the test's own. A window is held as
// { window, main, store, controller }.
TestCase {
    when: windowShown

    // A closed local port: a push fails at once, and nothing leaves the machine.
    readonly property string serviceHost: "127.0.0.1:9"
    readonly property string defaultSubject: "Votre devis Korvel est pret"
    property var opened: []
    // The unlocked window each test starts with, when unlockEachTest is set.
    property bool unlockEachTest: false
    property var t: null

    function initTestCase() { TestSupport.setEnvironment("VELINO_SERVICE_HOST", serviceHost) }

    function init() {
        verify(TestSupport.resetSettings(), "settings wiped")
        t = unlockEachTest ? openUnlocked() : null
    }

    function cleanup() {
        opened.splice(0).forEach(w => w?.close())
        wait(0)
    }

    function findAll(item, test) {
        return Array.from(item.children).reduce((all, child) => all.concat(findAll(child, test)),
                                                 test(item) ? [item] : [])
    }

    function find(item, test) { return findAll(item, test)[0] ?? null }

    function named(root, name) {
        const item = find(root, (i) => i.objectName === name)
        verify(item, "item " + name)
        return item
    }

    function el(t, name) { return named(t.main, name) }
    function lockItem(w, name) { return named(named(w.contentItem, "lockLoader").item, name) }

    function openWindow() {
        const w = AppShell.openWindow()
        opened.push(w)
        w.requestActivate()
        tryVerify(() => w.visible && w.active, 5000)
        return { window: w }
    }

    // Types `password` on `w`'s lock screen; submits it with the key `submit`, or "button".
    function submitPassword(w, password, submit = Qt.Key_Return) {
        const field = lockItem(w, "passwordField")
        tryVerify(() => field.activeFocus, 3000, "password field focused")
        TestSupport.typeText(w, password)
        verify(field.text === password && field.displayText !== password, "masked")
        submit === "button" ? mouseClick(lockItem(w, "unlockButton"))
                            : TestSupport.keyClick(w, submit)
    }

    // A new window, unlocked: the client's name focused, the preview shown.
    function openUnlocked() {
        const t = openWindow(), w = t.window
        submitPassword(w, "Falcon77!")
        tryVerify(() => w.lockState.isUnlocked)
        Object.assign(t, { main: named(w.contentItem, "mainLoader").item,
                           controller: w.controller, store: w.controller.store })
        const name = el(t, "field.recipientName").field, preview = el(t, "htmlPreview")
        tryVerify(() => name.activeFocus, 3000, "the client's name focused")
        tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000,
                  "preview shown")
        return t
    }

    // The control of `name` (a form field's: "field." + its name), focused, cursor at its end.
    function focusControl(t, name) {
        const wrapper = el(t, name), c = wrapper.field ?? wrapper.editor
        c.forceActiveFocus()
        tryVerify(() => c.activeFocus, 2000, name + " focused")
        c.cursorPosition = c.length
        return c
    }

    // Types `text` into the control of `name`: after its text, or over it with `replace`.
    function typeInto(t, name, text, replace = false) {
        const c = focusControl(t, name)
        if (replace)
            c.selectAll()
        TestSupport.typeText(t.window, text)
        return c
    }

    function clearField(t, fieldName) {
        const c = typeInto(t, "field." + fieldName, "", true)
        TestSupport.keyClick(t.window, Qt.Key_Backspace)
        compare(c.text, "")
    }

    // Runs `edit`, then waits for the e-mail to be generated again; returns what `edit` returned.
    function regenerated(t, edit) {
        const before = t.store.generatedHTML, result = edit()
        tryVerify(() => t.store.generatedHTML !== before, 3000, "regenerated")
        return result
    }

    function box(item) {
        const p = item.mapToItem(item.Window.contentItem, 0, 0)
        return { x: p.x, y: p.y, right: p.x + item.width, bottom: p.y + item.height }
    }

    function inside(inner, outer) {
        const [a, b] = [box(inner), box(outer)]
        return a.x >= b.x - 0.5 && a.right <= b.right + 0.5
               && a.y >= b.y - 0.5 && a.bottom <= b.bottom + 0.5
    }

    // On screen, and inside the form's scrolled viewport when in the form.
    function onScreen(t, item) {
        const form = t.main.composerPane
        return inside(item, t.window.contentItem)
               && (!find(form, (i) => i === item) || inside(item, form))
    }

    // Scrolls the form to show `item` `margin` pixels below its top.
    function reveal(t, item, margin = 120) {
        const flick = t.main.composerPane.scrollView.contentItem
        const y = item.mapToItem(flick.contentItem, 0, 0).y
        flick.contentY = Math.max(0, Math.min(y - margin, flick.contentHeight - flick.height))
        waitForRendering(t.main)
        verify(onScreen(t, item), item.objectName + " on screen")
        return item
    }

    // Saves the record as a new preset named `name`.
    function savePreset(t, name) {
        t.store.customPresetDraftName = name
        t.store.saveAsNewCustomPreset()
    }

    // The row of a saved preset; the list creates it at its next layout.
    function presetRow(t, id) {
        tryVerify(() => find(el(t, "customPresetList"),
                             (i) => i.objectName === "customPresetRow." + id), 2000, id)
        return el(t, "customPresetRow." + id)
    }

    // Clicks `button` on the modal alert `popup` (the warning's OK by default); returns its text.
    function answerAlert(t, popup = t.window.warningAlert, button = "alertOkButton") {
        const dialogs = t.controller.dialogs
        tryVerify(() => popup.opened, 5000, "alert shown")
        verify(popup.modal && dialogs.isModal, "modal")
        const message = named(popup.contentItem, "alertMessage").text
        mouseClick(named(popup.contentItem, button))
        tryVerify(() => !dialogs.isModal && !popup.visible, 3000, "alert closed by " + button)
        return message
    }
}
