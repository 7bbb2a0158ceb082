import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Velino

// The save panel of the export: the current folder with its sub-folders and HTML files,
// folder creation, and the file name, pre-filled. It shows `panel` (a SavePanel) while the
// panel is open and sends it the user's answer.
Popup {
    id: root

    required property SavePanel panel

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 600
    height: Math.min(560, parent ? parent.height - 80 : 560)
    modal: true
    focus: true
    padding: 24
    closePolicy: Popup.NoAutoClose

    readonly property bool shown: panel.isOpen
    onShownChanged: {
        if (shown) {
            creatingFolder = false
            open()
        } else {
            close()
        }
    }

    property bool creatingFolder: false

    T.Overlay.modal: Rectangle {
        color: Qt.rgba(0, 0, 0, 0.45)
    }

    background: Surface {
        radius: 22
        gradient: AppTheme.panelBackground
        borderColor: AppTheme.inputLine
        shadowColor: Qt.rgba(0, 0, 0, 0.4)
        shadowRadius: 28
        shadowOffsetY: 16
    }

    contentItem: FocusScope {
        focus: true
        Keys.onEscapePressed: root.panel.cancel()

        ColumnLayout {
            anchors.fill: parent
            spacing: 14

            Text {
                objectName: "savePanelTitle"
                Layout.fillWidth: true
                text: root.panel.title
                font.family: AppTheme.fontFamily
                font.pixelSize: 16
                font.weight: Font.Bold
                color: AppTheme.text
                wrapMode: Text.Wrap
            }

            RowLayout {
                Layout.fillWidth: true
                spacing: 10
                ToolbarButton {
                    objectName: "savePanelUp"
                    text: "Dossier parent"
                    enabled: root.panel.canGoUp
                    onClicked: root.panel.goUp()
                }
                Text {
                    objectName: "savePanelFolder"
                    Layout.fillWidth: true
                    text: root.panel.folder
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 12
                    font.weight: Font.Medium
                    color: AppTheme.muted
                    elide: Text.ElideMiddle
                }
                ToolbarButton {
                    objectName: "savePanelNewFolder"
                    text: "Nouveau dossier"
                    onClicked: {
                        root.creatingFolder = true
                        folderNameField.field.text = "Nouveau dossier"
                        folderNameField.field.selectAll()
                        folderNameField.field.forceActiveFocus()
                    }
                }
            }

            RowLayout {
                Layout.fillWidth: true
                visible: root.creatingFolder
                spacing: 10
                LabeledTextField {
                    id: folderNameField
                    objectName: "savePanelFolderName"
                    Layout.fillWidth: true
                    title: "Nom du dossier"
                    Connections {
                        target: folderNameField.field
                        function onAccepted() { createButton.clicked() }
                    }
                }
                ToolbarButton {
                    id: createButton
                    objectName: "savePanelCreateFolder"
                    Layout.alignment: Qt.AlignBottom
                    text: "Creer"
                    onClicked: {
                        if (root.panel.createFolder(folderNameField.field.text))
                            root.creatingFolder = false
                    }
                }
            }

            Surface {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: 120
                radius: 14
                gradient: AppTheme.inputSurface
                borderColor: AppTheme.inputLine

                ListView {
                    id: list
                    objectName: "savePanelList"
                    anchors.fill: parent
                    anchors.margins: 6
                    clip: true
                    model: root.panel
                    boundsBehavior: Flickable.StopAtBounds
                    ScrollBar.vertical: ScrollBar {}

                    delegate: ItemDelegate {
                        id: entry
                        required property int index
                        required property string name
                        required property bool isFolder

                        width: ListView.view.width
                        height: 32
                        focusPolicy: Qt.NoFocus
                        background: Rectangle {
                            radius: 8
                            color: entry.hovered ? Qt.rgba(1, 1, 1, 0.06) : "transparent"
                        }
                        contentItem: Text {
                            leftPadding: 4
                            text: (entry.isFolder ? "▸  " : "    ") + entry.name
                            font.family: AppTheme.fontFamily
                            font.pixelSize: 13
                            font.weight: entry.isFolder ? Font.DemiBold : Font.Medium
                            color: entry.isFolder ? AppTheme.text : AppTheme.muted
                            elide: Text.ElideRight
                            verticalAlignment: Text.AlignVCenter
                        }
                        onClicked: root.panel.activate(entry.index)
                    }
                }
            }

            LabeledTextField {
                id: fileNameField
                objectName: "savePanelFileName"
                Layout.fillWidth: true
                title: "Nom du fichier"
                text: root.panel.fileName
                onEdited: (value) => root.panel.fileName = value
                Connections {
                    target: fileNameField.field
                    function onAccepted() { root.panel.save() }
                }
            }

            Text {
                objectName: "savePanelNote"
                Layout.fillWidth: true
                visible: text.length > 0
                text: root.panel.errorText.length > 0
                      ? root.panel.errorText
                      : (root.panel.replacesFile ? "Un fichier de ce nom existe deja : il sera remplace." : "")
                font.family: AppTheme.fontFamily
                font.pixelSize: 12
                font.weight: Font.Medium
                color: root.panel.errorText.length > 0 ? Qt.rgba(1.0, 0.48, 0.62, 1) : AppTheme.muted
                wrapMode: Text.Wrap
            }

            RowLayout {
                Layout.alignment: Qt.AlignRight
                spacing: 10
                ToolbarButton {
                    objectName: "savePanelCancel"
                    text: "Annuler"
                    onClicked: root.panel.cancel()
                }
                ToolbarButton {
                    objectName: "savePanelSave"
                    text: "Enregistrer"
                    primary: true
                    enabled: root.panel.canSave
                    onClicked: root.panel.save()
                }
            }
        }
    }

    onOpened: {
        fileNameField.field.forceActiveFocus()
        fileNameField.field.selectAll()
    }
}
