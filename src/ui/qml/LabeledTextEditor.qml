import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velino

// A titled multi-line editor, at least minHeight high and growing with its text.
// `text` is the shown value; edits emit edited(text) for the owner to store.
ColumnLayout {
    id: root

    property string title
    property string text
    property real minHeight: 90
    readonly property alias editor: area

    signal edited(string text)

    spacing: 8

    FieldLabel {
        Layout.fillWidth: true
        text: root.title
    }

    LongTextGuard {
        id: guard
        Layout.fillWidth: true
        Layout.minimumHeight: root.minHeight
        title: root.title
        fullText: root.text
        summaryLines: 3
        framed: true
        onEditRequested: area.forceActiveFocus()
    }

    TextArea {
        id: area
        visible: !guard.guarding
        Layout.fillWidth: true
        Layout.minimumHeight: root.minHeight
        Layout.preferredHeight: Math.max(root.minHeight, implicitHeight)
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
