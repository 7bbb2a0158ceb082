import QtQuick
import QtQuick.Controls.Basic
import QtTest
import Velino

Item {
    id: scene
    width: 200
    height: 200

    TestCase {
        id: testCase
        name: "Main"
        when: windowShown

        property var opened: []

        function cleanup() {
            for (const w of opened) {
                if (w)
                    w.close()
            }
            opened = []
            wait(50)
        }

        function findNamed(item, name) {
            if (!item)
                return null
            if (item.objectName === name)
                return item
            const children = item.children
            for (let i = 0; i < children.length; ++i) {
                const found = findNamed(children[i], name)
                if (found)
                    return found
            }
            return null
        }

        function findAction(menuBar, name) {
            for (let m = 0; m < menuBar.count; ++m) {
                const menu = menuBar.menuAt(m)
                for (let i = 0; i < menu.count; ++i) {
                    const item = menu.itemAt(i)
                    if (item && item.action && item.action.objectName === name)
                        return item.action
                }
            }
            return null
        }

        function openWindow() {
            const w = AppShell.openWindow()
            verify(w)
            opened.push(w)
            w.requestActivate()
            tryVerify(() => w.visible && w.active, 5000)
            return w
        }

        function test_windowStartsLocked() {
            const w = openWindow()
            compare(w.minimumWidth, 1320)
            compare(w.minimumHeight, 900)
            verify(w.width >= 1320 && w.height >= 900)
            compare(w.lockState.isUnlocked, false)
            const lockLoader = findNamed(w.contentItem, "lockLoader")
            const mainLoader = findNamed(w.contentItem, "mainLoader")
            verify(lockLoader.active)
            verify(!mainLoader.active)
            const field = findNamed(lockLoader.item, "passwordField")
            tryVerify(() => field.activeFocus, 3000, "password field focused at start")
        }

        function test_unlockShowsTheMainContent() {
            const w = openWindow()
            const lockLoader = findNamed(w.contentItem, "lockLoader")
            const field = findNamed(lockLoader.item, "passwordField")
            // Keys go to the test's own window: the field's text and Return are
            // simulated here (typing is covered by the LockView tests).
            w.lockState.password = "Falcon77!"
            compare(field.text, "Falcon77!")
            field.accepted()
            tryCompare(w.lockState, "isUnlocked", true)
            const mainLoader = findNamed(w.contentItem, "mainLoader")
            verify(mainLoader.active)
            verify(!lockLoader.active)
            verify(findNamed(mainLoader.item, "mainContent"))
        }

        function test_lockCardIsCentred() {
            const w = openWindow()
            const lockLoader = findNamed(w.contentItem, "lockLoader")
            const card = lockLoader.item
            const centre = card.mapToItem(w.contentItem, card.width / 2, card.height / 2)
            fuzzyCompare(centre.x, w.contentItem.width / 2, 1)
            fuzzyCompare(centre.y, w.contentItem.height / 2, 1)
        }

        function test_editMenu() {
            const w = openWindow()
            const menuBar = w.menuBar
            verify(menuBar)
            const expected = [
                ["cutAction", "Couper", StandardKey.Cut],
                ["copyAction", "Copier", StandardKey.Copy],
                ["pasteAction", "Coller", StandardKey.Paste],
                ["selectAllAction", "Tout selectionner", StandardKey.SelectAll],
            ]
            const edit = menuBar.menuAt(0)
            compare(edit.count, 4)
            for (let i = 0; i < expected.length; ++i) {
                const action = edit.itemAt(i).action
                compare(action.objectName, expected[i][0])
                compare(action.text, expected[i][1])
                compare(action.shortcut, expected[i][2])
            }
        }

        function test_editMenuActsOnTheFocusedField() {
            const w = openWindow()
            const field = findNamed(findNamed(w.contentItem, "lockLoader").item, "passwordField")
            tryVerify(() => field.activeFocus, 3000)
            w.lockState.password = "secret"
            compare(field.selectionEnd - field.selectionStart, 0)
            findAction(w.menuBar, "selectAllAction").trigger()
            compare(field.selectionStart, 0)
            compare(field.selectionEnd, 6)
            // Cutting a masked field is refused by the field itself, as everywhere.
            findAction(w.menuBar, "cutAction").trigger()
            compare(field.text, "secret")
        }

        function test_newWindowStartsLocked() {
            const first = openWindow()
            first.lockState.password = "Falcon77!"
            first.lockState.unlock()
            verify(first.lockState.isUnlocked)
            const count = AppShell.windowCount
            const action = findAction(first.menuBar, "newWindowAction")
            compare(action.text, "Nouvelle fenetre")
            action.trigger()
            compare(AppShell.windowCount, count + 1)
            const second = AppShell.windowAt(count)
            verify(second)
            opened.push(second)
            verify(second !== first)
            verify(!second.lockState.isUnlocked)
            verify(findNamed(second.contentItem, "lockLoader").active)
        }

        function test_secondWindowHasItsOwnLock() {
            const first = openWindow()
            const second = openWindow()
            verify(first !== second)
            verify(first.lockState !== second.lockState)
            first.lockState.password = "Falcon77!"
            first.lockState.unlock()
            verify(first.lockState.isUnlocked)
            verify(!second.lockState.isUnlocked)
        }

        function test_closedWindowsAreReleased() {
            const count = AppShell.windowCount
            const w = openWindow()
            compare(AppShell.windowCount, count + 1)
            w.close()
            tryCompare(AppShell, "windowCount", count)
        }
    }
}
