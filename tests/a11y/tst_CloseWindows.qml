import QtQuick
import QtTest
import Velino
import VelinoTest

// Closing windows while an assistive tool listens on the accessibility bus (the test runs
// with accessibility forced on and an AT-SPI client listening: atspi_session.py). Each
// close must leave the program running, and a subject typed just before the close (well
// within the store's save debounce) must be what the next window shows.
Item {
    width: 200
    height: 200

    TestCase {
        id: testCase
        name: "CloseWindows"
        when: windowShown

        readonly property var rounds: ["un", "deux", "trois", "quatre", "cinq"]

        function init() {
            verify(TestSupport.resetSettings(), "settings wiped")
        }

        function findNamed(item, name) {
            if (!item || item.objectName === name)
                return item || null
            for (let i = 0; i < item.children.length; ++i) {
                const found = findNamed(item.children[i], name)
                if (found)
                    return found
            }
            return null
        }

        function openWindow() {
            const w = AppShell.openWindow()
            verify(w, "window opened")
            w.requestActivate()
            tryVerify(() => w.visible && w.active, 5000, "window shown and active")
            return w
        }

        function unlock(w) {
            const field = findNamed(findNamed(w.contentItem, "lockLoader").item, "passwordField")
            tryVerify(() => field.activeFocus, 3000, "password field focused")
            TestSupport.typeText(w, "Falcon77!")
            TestSupport.keyClick(w, Qt.Key_Return)
            tryVerify(() => w.lockState.isUnlocked, 3000, "unlocked")
            const main = findNamed(w.contentItem, "mainLoader").item
            verify(main, "main content loaded")
            return main
        }

        // Types `text` as the new subject, through the subject field.
        function typeSubject(w, main, text) {
            const control = findNamed(main, "field.subject").field
            control.forceActiveFocus()
            tryVerify(() => control.activeFocus, 2000, "subject focused")
            control.selectAll()
            TestSupport.keyClick(w, Qt.Key_Backspace)
            TestSupport.typeText(w, text)
            // With a client listening, Qt hands each key to the accessibility bus first and
            // delivers it once answered: the text arrives after typeText() returns.
            tryCompare(control, "text", text, 5000)
        }

        // Closes `w` as the window manager's close button would, and waits until the shell
        // has let it go and the event loop has run its destruction.
        function closeWindow(w) {
            const count = AppShell.windowCount
            w.close()
            tryCompare(AppShell, "windowCount", count - 1)
            wait(100)
        }

        function savedSubjectSeenByANewWindow() {
            const w = openWindow()
            const subject = w.controller.store.data.subject
            closeWindow(w)
            return subject
        }

        function test_closes_data() {
            return [
                { tag: "only window, locked", windows: 1, unlock: false },
                { tag: "only window, unlocked, edited", windows: 1, unlock: true },
                { tag: "second window, locked", windows: 2, unlock: false },
                { tag: "second window, unlocked, edited", windows: 2, unlock: true },
            ]
        }

        // 5 rounds of the 4 cases: 20 closes of the window under test, plus the windows
        // opened beside it and to read the saved subject.
        function test_closes(data) {
            for (const round of rounds) {
                const first = data.windows === 2 ? openWindow() : null
                const w = openWindow()
                const subject = "Objet tape avant fermeture " + round
                if (data.unlock)
                    typeSubject(w, unlock(w), subject)
                closeWindow(w)
                if (first)
                    closeWindow(first)
                if (data.unlock)
                    compare(savedSubjectSeenByANewWindow(), subject, "round " + round)
            }
        }
    }
}
