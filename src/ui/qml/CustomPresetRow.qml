import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velino

// One saved preset of the list: its name (with a "Charge" chip while it is the loaded
// one), where it comes from and its subject, when it was last updated, and its three
// actions. The row is given plain values and reports the buttons through its signals.
// The buttons and the chip always keep their full size: a long name is shortened, and
// shown whole in a tooltip.
Item {
    id: root

    property string name
    property string sourceTitle
    property string subjectLine
    property date updatedAt
    property bool isActive: false

    readonly property alias loadButton: loadButton

    signal load()
    signal overwrite()
    signal remove()

    implicitWidth: row.implicitWidth + 32
    implicitHeight: row.implicitHeight + 32

    Surface {
        anchors.fill: parent
        radius: 20
        gradient: root.isActive ? null : AppTheme.inputSurface
        color: root.isActive ? AppTheme.withOpacity(AppTheme.buttonSurface, 0.36) : "transparent"
        borderColor: root.isActive ? AppTheme.withOpacity(AppTheme.accent, 0.55) : AppTheme.fieldLine
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 16
        spacing: 12

        ColumnLayout {
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            Layout.preferredWidth: 0
            Layout.alignment: Qt.AlignVCenter
            spacing: 6

            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                Text {
                    objectName: "presetName"
                    Layout.fillWidth: true
                    Layout.minimumWidth: 0
                    Layout.maximumWidth: implicitWidth
                    text: root.name
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 15
                    font.weight: Font.Bold
                    color: AppTheme.text
                    elide: Text.ElideRight
                    ToolTip.visible: truncated && nameHover.hovered
                    ToolTip.text: root.name
                    HoverHandler {
                        id: nameHover
                    }
                }
                StatusChip {
                    objectName: "activeChip"
                    visible: root.isActive
                    text: "Charge"
                    tint: AppTheme.accentFill
                    Layout.minimumWidth: implicitWidth
                }
                Item {
                    Layout.fillWidth: true
                }
            }
            Text {
                objectName: "presetSource"
                Layout.fillWidth: true
                text: root.sourceTitle + " · " + root.subjectLine
                font.family: AppTheme.fontFamily
                font.pixelSize: 12
                font.weight: Font.Medium
                color: AppTheme.muted
                wrapMode: Text.Wrap
                maximumLineCount: 2
                elide: Text.ElideRight
            }
            Text {
                objectName: "presetUpdated"
                Layout.fillWidth: true
                text: "Mis a jour le " + UiHelpers.updatedLabel(root.updatedAt)
                font.family: AppTheme.fontFamily
                font.pixelSize: 11
                font.weight: Font.Medium
                color: AppTheme.withOpacity(AppTheme.muted, 0.85)
                elide: Text.ElideRight
            }
        }

        RowLayout {
            objectName: "presetButtons"
            Layout.alignment: Qt.AlignVCenter
            Layout.minimumWidth: implicitWidth
            spacing: 8
            ToolbarButton {
                id: loadButton
                objectName: "loadButton"
                text: "Charger"
                accessibleContext: root.name
                primary: root.isActive
                onClicked: root.load()
            }
            ToolbarButton {
                objectName: "overwriteButton"
                text: "Remplacer"
                accessibleContext: root.name
                onClicked: root.overwrite()
            }
            ToolbarButton {
                objectName: "removeButton"
                text: "Supprimer"
                accessibleContext: root.name
                destructive: true
                onClicked: root.remove()
            }
        }
    }
}
