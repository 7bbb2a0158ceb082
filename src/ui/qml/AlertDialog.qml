import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Velino

// A modal alert in the window's palette: a bold title, an explanation, and its buttons
// (given as children) aligned on the right. It opens and closes with `shown`; a press on
// Escape asks the owner to close it through escapePressed(). Opened, it gives the keyboard
// focus to `defaultButton` (Tab moves between the buttons, Return or Space presses the
// focused one) and a screen reader reads it as an alert; closed, it gives the focus back
// to what had it before, when that is still on screen.
Popup {
    id: root

    property string title
    property string message
    property bool shown: false
    default property alias buttons: buttonRow.data
    property Item defaultButton: null
    property Item focusBefore: null

    signal escapePressed()
    signal returnPressed()

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 440
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.NoAutoClose

    onShownChanged: shown ? open() : close()
    onAboutToShow: {
        const window = T.Overlay.overlay ? T.Overlay.overlay.Window : null
        focusBefore = window ? window.activeFocusItem : null
    }
    onOpened: if (defaultButton) defaultButton.forceActiveFocus(Qt.OtherFocusReason)
    onClosed: {
        if (focusBefore && focusBefore.visible)
            focusBefore.forceActiveFocus(Qt.OtherFocusReason)
        focusBefore = null
    }
    Component.onCompleted: if (shown) open()

    T.Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, 0.45)
    }

    background: Surface {
        radius: 22
        gradient: AppTheme.dialogSurface
        borderColor: AppTheme.inputLine
        shadowColor: Qt.rgba(0, 0, 0, 0.4)
        shadowRadius: 28
        shadowOffsetY: 16
    }

    contentItem: FocusScope {
        implicitWidth: column.implicitWidth
        implicitHeight: column.implicitHeight
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: root.title
        Accessible.description: root.message
        Keys.onEscapePressed: root.escapePressed()
        Keys.onReturnPressed: root.returnPressed()
        Keys.onEnterPressed: root.returnPressed()

        ColumnLayout {
            id: column
            anchors.fill: parent
            spacing: 12

            Text {
                objectName: "alertTitle"
                Layout.fillWidth: true
                text: root.title
                font.family: AppTheme.fontFamily
                font.pixelSize: 16
                font.weight: Font.Bold
                color: AppTheme.text
                wrapMode: Text.Wrap
            }
            Text {
                objectName: "alertMessage"
                Layout.fillWidth: true
                visible: text.length > 0
                text: root.message
                font.family: AppTheme.fontFamily
                font.pixelSize: 13
                font.weight: Font.Medium
                color: AppTheme.muted
                wrapMode: Text.Wrap
            }
            RowLayout {
                id: buttonRow
                Layout.alignment: Qt.AlignRight
                Layout.topMargin: 8
                spacing: 10
            }
        }
    }
}
