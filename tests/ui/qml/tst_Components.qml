import QtQuick
import QtQuick.Controls.Basic
import QtTest
import Velino

TestCase {
    id: scene
    name: "Components"
    when: windowShown
    visible: true
    width: 1000
    height: 800

    // The Edit menu's commands and what they act on.
    EditCommands { id: commands; window: scene.Window.window }
    TextField { id: first; x: 10; y: 10; width: 200; text: "premier champ" }
    ToolbarButton { id: button; x: 300; y: 10; text: "Bouton" }
    Popup {
        id: popup
        x: 300; y: 100
        focus: true
        TextField { id: popupField; width: 100; focus: true; text: "menu" }
    }

    // As narrow as at 1320 px.
    Component { id: card; SummaryCard { width: 134; height: 140; title: "Etat"; caption: "x" } }
    Component {
        id: colorField
        BrandingColorField { width: 300; title: "Couleur principale"; text: "#2F7DF6" }
    }

    function init() {
        [first, popupField].forEach(field => field.deselect())
        first.forceActiveFocus()
    }

    // Colour `c` (with its alpha) laid over the opaque `under`.
    function over(c, under) {
        return Qt.rgba(c.r * c.a + under.r * (1 - c.a), c.g * c.a + under.g * (1 - c.a),
                       c.b * c.a + under.b * (1 - c.a), 1)
    }

    // Text at 4.5:1, boundaries and focus ring at 3:1, on cards and under the header's veil.
    function test_readableColours() {
        const t = AppTheme, white = Qt.rgba(1, 1, 1, 1)
        const card = over(Qt.rgba(0.065, 0.085, 0.135, 0.96), t.backgroundBase)
        const header = over(Qt.rgba(0, 0, 0, 0.26), t.backgroundBase)
        const field = over(Qt.rgba(1, 1, 1, 0.065), card)
        const pairs = [["white on the blue fill", white, t.accentFill, 4.5],
                       ["white on the violet fill", white, t.accentSoftFill, 4.5],
                       ["placeholder", over(t.placeholder, field), field, 4.5],
                       ["muted", over(t.muted, card), card, 4.5],
                       ["link", t.link, card, 4.5],
                       ["destructive", t.destructive, over(t.buttonSurface, card), 4.5],
                       ["field boundary", over(t.fieldLine, card), card, 3],
                       ["focus ring", t.focusRing, card, 3],
                       ["focus ring on the header", t.focusRing, header, 3]]
        for (const tint of [t.cyan, t.accentFill, t.accentSoftFill]) {
            const chip = over(t.withOpacity(tint, 0.92), header)
            pairs.push(["chip " + tint, t.textOn(chip), chip, 4.5])
        }
        for (const [tag, fg, bg, min] of pairs)
            verify(t.contrast(fg, bg) >= min, tag + ": " + t.contrast(fg, bg).toFixed(2) + ":1")
    }

    // In a narrow card, words wrap whole; a word too wide shrinks the value instead.
    function test_summaryCardKeepsWordsWhole() {
        for (const [value, lines, full] of [["Thunderbird", 1, false],
                                            ["Pret a envoyer", 2, true],
                                            ["4", 1, true]]) {
            const text = findChild(createTemporaryObject(card, scene, { value }), "summaryValue")
            waitForItemPolished(text.parent)
            compare([text.lineCount, text.font.pixelSize === 22], [lines, full], value)
        }
    }

    function test_brandingColorFieldSwatch() {
        const field = createTemporaryObject(colorField, scene)
        const swatch = findChild(field, "swatch")
        field.field.forceActiveFocus()
        field.field.cursorPosition = field.field.text.length
        keyClick("F")
        compare([field.field.text, swatch.color.a], ["#2F7DF6F", 0],
                "nothing corrected, transparent while unparsable")
        keyClick(Qt.Key_Backspace)
        compare(String(swatch.color), "#2f7df6", "back to a colour")
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
