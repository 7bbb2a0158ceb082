import QtQuick
import QtQuick.Layouts
import Velino

// The band at the top of the main window: the brand, the three live status chips and
// the main actions.
Item {
    id: root

    required property WindowController controller
    readonly property ComposerStore store: controller.store

    implicitHeight: row.implicitHeight + 2 * 18
    implicitWidth: row.implicitWidth + 2 * 24

    Surface {
        anchors.fill: parent
        gradient: AppTheme.headerSurface
    }

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 1
        color: AppTheme.line
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        anchors.topMargin: 18
        anchors.bottomMargin: 18
        spacing: 18

        BundleLogoView {
            objectName: "headerLogo"
            Layout.alignment: Qt.AlignVCenter
            resourceName: "VelinoLogo"
            size: 68
            cornerRadius: 20
        }

        // Takes what the buttons leave. The last action's chip, the only one whose text can
        // grow long, is shortened before any button is.
        ColumnLayout {
            Layout.alignment: Qt.AlignVCenter
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            Layout.preferredWidth: 0
            spacing: 6

            Text {
                objectName: "appTitle"
                text: "Velino"
                font.family: AppTheme.fontFamily
                font.pixelSize: 30
                font.weight: Font.Bold
                color: AppTheme.text
            }
            Text {
                objectName: "appSubtitle"
                Layout.fillWidth: true
                text: "Studio mail client"
                font.family: AppTheme.fontFamily
                font.pixelSize: 13
                font.weight: Font.Medium
                color: AppTheme.muted
                wrapMode: Text.Wrap
            }
            RowLayout {
                objectName: "statusChips"
                Layout.fillWidth: true
                Layout.minimumWidth: 0
                spacing: 12
                StatusChip {
                    objectName: "formatChip"
                    Layout.minimumWidth: implicitWidth
                    text: root.store.currentFormatStatus
                    tint: AppTheme.accentFill
                }
                StatusChip {
                    objectName: "saveChip"
                    Layout.minimumWidth: implicitWidth
                    text: root.store.saveStatus
                    tint: AppTheme.accentSoftFill
                }
                StatusChip {
                    objectName: "actionChip"
                    Layout.fillWidth: true
                    Layout.minimumWidth: Math.min(implicitWidth, 48)
                    Layout.maximumWidth: implicitWidth
                    text: root.store.lastAction
                    tint: AppTheme.cyan
                }
                Item {
                    Layout.fillWidth: true
                }
            }
        }

        RowLayout {
            objectName: "headerButtons"
            Layout.alignment: Qt.AlignVCenter
            Layout.minimumWidth: implicitWidth
            spacing: 10

            ToolbarButton {
                objectName: "newButton"
                text: "Nouveau"
                onClicked: root.controller.requestReset()
            }
            ToolbarButton {
                objectName: "standalonePreviewButton"
                text: "Apercu externe"
                onClicked: root.store.openStandalonePreview()
            }
            ToolbarButton {
                objectName: "exportButton"
                text: "Exporter"
                onClicked: root.store.exportHTML()
            }
            ToolbarButton {
                objectName: "openInMailButton"
                text: "Ouvrir dans Mail"
                primary: true
                onClicked: root.store.openAppleMailDraft()
            }
        }
    }
}
