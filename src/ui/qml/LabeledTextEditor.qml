import QtQuick
import QtQuick.Controls.Basic
import Velino

// A titled multi-line editor, at least minHeight high and otherwise exactly as high as
// its text (laid out at the width it is given). `text` is the shown value; edits emit
// edited(text) for the owner to store.
Item {
    id: root

    property string title
    property string text
    property real minHeight: 90
    readonly property alias editor: area

    signal edited(string text)

    function moveFocus(event, forward) {
        const next = area.nextItemInFocusChain(forward)
        if (next)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason)
        event.accepted = true
    }

    // Sized by hand rather than by a layout: the editor's height follows its text at the
    // width it is given, and a layout would keep a height measured at an earlier width.
    implicitWidth: 200
    implicitHeight: guard.guarding ? guard.y + guard.height : area.y + area.height

    FieldLabel {
        id: label
        width: root.width
        text: root.title
    }

    LongTextGuard {
        id: guard
        y: label.height + 8
        width: root.width
        height: Math.max(root.minHeight, implicitHeight)
        title: root.title
        fullText: root.text
        summaryLines: 3
        framed: true
        onEditRequested: area.forceActiveFocus()
    }

    TextArea {
        id: area
        y: label.height + 8
        width: root.width
        height: Math.max(root.minHeight, contentHeight + topPadding + bottomPadding)
        visible: !guard.guarding
        text: guard.shownText
        font.family: AppTheme.fontFamily
        font.pixelSize: 13
        font.weight: Font.Medium
        color: AppTheme.text
        placeholderTextColor: AppTheme.placeholder
        selectionColor: AppTheme.selection
        selectedTextColor: "white"
        selectByMouse: true
        wrapMode: TextEdit.Wrap
        padding: 8
        background: Surface {
            radius: 12
            gradient: AppTheme.inputSurface
            borderColor: AppTheme.fieldLine

            FocusRing {
                control: area
                shapeRadius: 12
            }
        }
        Accessible.name: root.title
        // Tab and Shift+Tab leave the editor (they never type a tab into the text).
        Keys.onTabPressed: (event) => root.moveFocus(event, true)
        Keys.onBacktabPressed: (event) => root.moveFocus(event, false)
        // Only the user's changes: an update from the bound value leaves the texts equal.
        onTextChanged: if (text !== guard.shownText) root.edited(text)
    }
}
