import QtQuick
import QtQuick.Controls.Basic
import QtTest
import Velino

Item {
    id: scene
    width: 600
    height: 400

    EditCommands { id: commands; window: scene.Window.window }
    TextField { id: first; x: 10; y: 10; width: 200; text: "premier champ" }
    ToolbarButton { id: button; x: 300; y: 10; text: "Bouton" }
    Popup {
        id: popup
        x: 300; y: 100
        focus: true
        TextField { id: popupField; width: 100; focus: true; text: "menu" }
    }

    TestCase {
        name: "EditCommands"
        when: windowShown

        function init() {
            [first, popupField].forEach(field => field.deselect())
            first.forceActiveFocus()
        }

        // On the focused field, through the window's Edit menu: tst_MainWindow.
        // Neither a clicked button nor a field in an open popup takes the commands from the field
        // below.
        function test_commandsStayOnTheFieldBelow() {
            mouseClick(button)
            verify(first.activeFocus, "the button did not take the focus")
            popup.open()
            tryVerify(() => popupField.activeFocus)
            compare(commands.target, first, "focus in a popup is passed over")
            verify(commands.selectAll())
            compare([first.selectedText, popupField.selectedText], ["premier champ", ""])
            popup.close()
        }

        function test_nothingHappensWithoutATextControl() {
            first.focus = false
            scene.forceActiveFocus()
            for (const command of ["selectAll", "copy", "paste", "cut"])
                verify(!commands[command](), command)
        }
    }
}
