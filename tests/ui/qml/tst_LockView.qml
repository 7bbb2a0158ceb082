import QtQuick
import QtTest
import Velino

Item {
    id: scene
    width: 900
    height: 700

    Component {
        id: lockComponent
        Item {
            property alias lock: lockState
            property alias view: lockView
            anchors.fill: parent
            LockState {
                id: lockState
            }
            LockView {
                id: lockView
                anchors.centerIn: parent
                lockState: lockState
                focus: true
            }
        }
    }

    TestCase {
        id: testCase
        name: "LockView"
        when: windowShown

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

        function makeLock() {
            const root = createTemporaryObject(lockComponent, scene)
            verify(root)
            const field = findNamed(root.view, "passwordField")
            verify(field)
            root.view.forceActiveFocus()
            tryVerify(() => field.activeFocus, 2000, "the password field has the focus")
            return { root: root, lock: root.lock, view: root.view, field: field,
                     button: findNamed(root.view, "unlockButton"),
                     error: findNamed(root.view, "lockError") }
        }

        function typeText(text) {
            for (let i = 0; i < text.length; ++i)
                keyClick(text[i])
        }

        function test_wrongPasswordsAreRefused_data() {
            return [
                { tag: "leading space", password: " Falcon77!" },
                { tag: "trailing space", password: "Falcon77! " },
                { tag: "lower-case first letter", password: "falcon77!" },
                { tag: "missing mark", password: "Falcon77" },
                { tag: "empty", password: "" },
            ]
        }

        function test_wrongPasswordsAreRefused(data) {
            const t = makeLock()
            typeText(data.password)
            compare(t.field.text, data.password)
            compare(t.lock.password, data.password, "the field writes the lock state")
            keyClick(Qt.Key_Return)
            compare(t.lock.isUnlocked, false)
            compare(t.field.text, "", "the field is emptied")
            compare(t.lock.password, "")
            compare(t.error.text, "Mot de passe incorrect.")
            verify(t.error.visible)
            verify(t.error.height >= 18)
            verify(t.field.activeFocus, "the user may retype at once")
        }

        function test_returnUnlocks() {
            const t = makeLock()
            typeText("Falcon77!")
            keyClick(Qt.Key_Return)
            compare(t.lock.isUnlocked, true)
            compare(t.lock.errorText, "")
            compare(t.field.text, "")
        }

        function test_enterKeyOfTheKeypadUnlocksToo() {
            const t = makeLock()
            typeText("Falcon77!")
            keyClick(Qt.Key_Enter)
            compare(t.lock.isUnlocked, true)
        }

        function test_buttonUnlocks() {
            const t = makeLock()
            compare(t.button.text, "Entrer dans Velino")
            verify(t.button.primary)
            typeText("Falcon77!")
            mouseClick(t.button)
            compare(t.lock.isUnlocked, true)
            compare(t.field.text, "")
        }

        function test_buttonWithWrongPasswordShowsTheError() {
            const t = makeLock()
            typeText("Falcon77?")
            mouseClick(t.button)
            compare(t.lock.isUnlocked, false)
            compare(t.field.text, "")
            compare(t.error.text, "Mot de passe incorrect.")
        }

        function test_refusalThenSuccessClearsTheError() {
            const t = makeLock()
            typeText("falcon77!")
            keyClick(Qt.Key_Return)
            compare(t.error.text, "Mot de passe incorrect.")
            typeText("Falcon77!")
            keyClick(Qt.Key_Return)
            compare(t.lock.isUnlocked, true)
            compare(t.error.text, "")
            compare(t.field.text, "")
        }

        function test_cardKeepsItsHeightWhenTheErrorAppears() {
            const t = makeLock()
            compare(t.error.text, "")
            verify(t.error.height >= 18, "the error line is laid out while empty")
            const height = t.view.height
            const errorY = t.error.y
            verify(height > 0)
            typeText("nope")
            keyClick(Qt.Key_Return)
            compare(t.error.text, "Mot de passe incorrect.")
            waitForRendering(t.view)
            compare(t.view.height, height)
            compare(t.error.y, errorY)
        }

        function test_fieldMasksItsCharacters() {
            const t = makeLock()
            compare(t.field.echoMode, TextInput.Password)
            compare(t.field.placeholderText, "Mot de passe")
            typeText("abc")
            verify(t.field.displayText !== "abc")
        }

        function test_cardGeometry() {
            const t = makeLock()
            compare(t.view.width, 460 + 2 * 34)
        }
    }
}
