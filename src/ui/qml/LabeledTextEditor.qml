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
            borderColor: AppTheme.inputLine
        }
        // Only the user's changes: an update from the bound value leaves the texts equal.
        onTextChanged: if (text !== guard.shownText) root.edited(text)
    }
}
