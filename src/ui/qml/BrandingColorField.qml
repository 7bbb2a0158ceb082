import QtQuick
import QtQuick.Layouts
import Velino

// A titled colour field: a round swatch of the colour typed (transparent while the text
// does not read as #RGB or #RRGGBB) before the text. What is typed is never corrected.
ColumnLayout {
    id: root

    property string title
    property string text
    readonly property alias field: input
    readonly property color swatchColor: UiHelpers.colorFromHex(input.text)

    signal edited(string text)

    spacing: 8

    FieldLabel {
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

        Row {
            visible: !guard.guarding
            anchors.fill: parent
            anchors.leftMargin: 14
            anchors.rightMargin: 14
            spacing: 10

            Rectangle {
                objectName: "swatch"
                anchors.verticalCenter: parent.verticalCenter
                width: 22
                height: 22
                radius: 11
                antialiasing: true
                color: root.swatchColor
                border.color: AppTheme.line
                border.width: 1
            }

            FieldInput {
                id: input
                width: parent.width - 22 - parent.spacing
                height: parent.height
                text: guard.shownText
                placeholderText: root.title
                onTextEdited: root.edited(text)
            }
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
