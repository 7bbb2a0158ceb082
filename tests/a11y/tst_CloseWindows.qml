import QtQuick
import QtTest
import Velino
import VelinoTest

// Closing windows while an AT-SPI client listens (run by atspi_session.py): each close leaves
// the program running, and a subject typed just before the close (well within the store's save
// debounce) is what the next window shows.
Item {
    width: 200
    height: 200

    TestCase {
        name: "CloseWindows"
        when: windowShown

        function openWindow() {
            const w = AppShell.openWindow()
            w.requestActivate()
            tryVerify(() => w.visible && w.active, 5000, "window shown and active")
            return w
        }

        function typeSubject(w, text) {
            w.lockState.password = "Falcon77!"
            w.lockState.unlock()
            tryVerify(() => findChild(w.contentItem, "field.subject"), 3000, "unlocked")
            const subject = findChild(w.contentItem, "field.subject").field
            subject.forceActiveFocus()
            subject.clear()
            TestSupport.typeText(w, text)
            // With a client listening, each key goes to the bus first: it arrives later.
            tryCompare(subject, "text", text, 5000)
        }

        function closeWindow(w) {
            const count = AppShell.windowCount
            w.close()
            tryCompare(AppShell, "windowCount", count - 1)
            wait(100) // the destruction runs
        }

        // Each case 5 times: 20 closes of the window under test.
        function test_closes() {
            verify(TestSupport.resetSettings(), "settings wiped")
            for (const [windows, unlock] of [[1, false], [1, true], [2, false], [2, true]]) {
                for (const round of ["un", "deux", "trois", "quatre", "cinq"]) {
                    const first = windows === 2 ? openWindow() : null
                    const w = openWindow()
                    const subject = "Objet tape avant fermeture " + round
                    if (unlock)
                        typeSubject(w, subject)
                    closeWindow(w)
                    if (first)
                        closeWindow(first)
                    if (unlock) {
                        const reader = openWindow()
                        const saved = reader.controller.store.data.subject
                        closeWindow(reader)
                        compare(saved, subject, windows + " window(s), round " + round)
                    }
                }
            }
        }
    }
}
