import QtQuick
import QtQuick.Layouts
import Velino

// A titled single-line field. `text` is the shown value (bind it to the owner's string);
// every keystroke emits edited(text) for the owner to store, so the value stays owned
// elsewhere.
ColumnLayout {
    id: root

    property string title
    property string text
    property bool secure: false
    readonly property alias field: input
    // The width the title needs to be shown whole.
    readonly property real labelWidth: fieldLabel.implicitWidth

    signal edited(string text)

    spacing: 8

    FieldLabel {
        id: fieldLabel
        Layout.fillWidth: true
        text: root.title
    }

    Surface {
        Layout.fillWidth: true
        Layout.preferredHeight: 44
        Layout.minimumHeight: 44
        Layout.maximumHeight: 44
        implicitWidth: 200
        radius: 14
        gradient: AppTheme.inputSurface
        borderColor: AppTheme.fieldLine

        FocusRing {
            control: input
            shapeRadius: 14
        }

        FieldInput {
            id: input
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 14
            visible: !guard.guarding
            text: guard.shownText
            placeholderText: root.title
            echoMode: root.secure ? TextInput.Password : TextInput.Normal
            onTextEdited: root.edited(text)
        }

        LongTextGuard {
            id: guard
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 4
            title: root.title
            fullText: root.text
            onEditRequested: input.forceActiveFocus()
        }
    }
}
