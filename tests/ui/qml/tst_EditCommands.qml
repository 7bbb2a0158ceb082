import QtQuick
import QtQuick.Controls.Basic
import QtTest
import Velino

Item {
    id: scene
    width: 600
    height: 400

    Component {
        id: editComponent
        Item {
            id: root
            anchors.fill: parent
            property alias commands: commands
            property alias first: first
            property alias second: second
            property alias editor: editor
            property alias popup: popup
            property alias popupField: popupField
            property alias button: button

            EditCommands {
                id: commands
                window: root.Window.window
            }
            TextField { id: first; x: 10; y: 10; width: 200; text: "premier champ" }
            TextField { id: second; x: 10; y: 60; width: 200; text: "second" }
            TextArea { id: editor; x: 10; y: 110; width: 200; height: 80; text: "ligne 1\\nligne 2" }
            ToolbarButton { id: button; x: 300; y: 10; text: "Bouton" }
            Popup {
                id: popup
                x: 300; y: 100
                focus: true
                TextField { id: popupField; width: 100; focus: true; text: "menu" }
            }
        }
    }

    TestCase {
        id: testCase
        name: "EditCommands"
        when: windowShown

        function make() {
            const root = createTemporaryObject(editComponent, scene)
            verify(root)
            verify(root.commands.window)
            return root
        }

        function test_selectAllActsOnTheFocusedFieldOrEditor() {
            const t = make()
            t.second.forceActiveFocus()
            compare(t.commands.target, t.second)
            verify(t.commands.selectAll())
            compare(t.second.selectedText, "second")
            compare(t.first.selectedText, "")
            t.editor.forceActiveFocus()
            verify(t.commands.selectAll())
            compare(t.editor.selectedText, t.editor.text)
        }

        function test_aMenuOpenStillTargetsTheFieldBelow() {
            const t = make()
            t.first.forceActiveFocus()
            t.popup.open()
            tryVerify(() => t.popupField.activeFocus)
            compare(t.commands.target, t.first, "focus in a popup is passed over")
            verify(t.commands.selectAll())
            compare(t.first.selectedText, "premier champ")
            compare(t.popupField.selectedText, "")
            t.popup.close()
        }

        function test_buttonsDoNotTakeTheFocus() {
            const t = make()
            t.first.forceActiveFocus()
            mouseClick(t.button)
            verify(t.first.activeFocus)
            verify(t.commands.selectAll())
            compare(t.first.selectedText, "premier champ")
        }

        function test_nothingHappensWithoutATextControl() {
            const t = make()
            t.first.forceActiveFocus()
            t.button.forceActiveFocus()
            t.first.focus = false
            scene.forceActiveFocus()
            verify(!t.commands.selectAll())
            verify(!t.commands.copy())
            verify(!t.commands.paste())
            verify(!t.commands.cut())
        }

        function test_standardShortcutsInAField() {
            const t = make()
            t.first.forceActiveFocus()
            keySequence(StandardKey.SelectAll)
            compare(t.first.selectedText, "premier champ")
        }
    }
}
