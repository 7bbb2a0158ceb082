import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velino

// The password card shown while the window is locked. It only displays `lockState` and
// sends it the attempts (Return in the field, or the button).
FocusScope {
    id: root

    required property LockState lockState

    readonly property color errorColor: Qt.rgba(1.0, 0.48, 0.62, 1)

    implicitWidth: card.width + 2 * 34
    implicitHeight: card.implicitHeight + 2 * 34

    Surface {
        objectName: "lockCard"
        anchors.fill: parent
        radius: 30
        gradient: AppTheme.panelBackground
        borderColor: AppTheme.line
        shadowColor: Qt.rgba(0, 0, 0, 0.34)
        shadowRadius: 34
        shadowOffsetY: 24
    }

    ColumnLayout {
        id: card
        x: 34
        y: 34
        width: 460
        spacing: 20

        RowLayout {
            spacing: 16
            BundleLogoView {
                Layout.alignment: Qt.AlignVCenter
                resourceName: "VelinoLogo"
                size: 62
                cornerRadius: 18
            }
            ColumnLayout {
                Layout.alignment: Qt.AlignVCenter
                spacing: 5
                Text {
                    text: "VELINO"
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 12
                    font.weight: Font.Black
                    font.letterSpacing: 5
                    color: AppTheme.accent
                }
                Text {
                    text: "Acces protege"
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 32
                    font.weight: Font.Bold
                    color: AppTheme.text
                }
            }
        }

        Text {
            Layout.fillWidth: true
            text: "Entrez le mot de passe Korvel pour ouvrir le logiciel."
            font.family: AppTheme.fontFamily
            font.pixelSize: 15
            font.weight: Font.Medium
            color: AppTheme.muted
            wrapMode: Text.Wrap
        }

        TextField {
            id: passwordField
            // No Accessible.name here: see masked_text_accessibility.h.
            echoMode: TextInput.Password
            objectName: "passwordField"
            Layout.fillWidth: true
            placeholderText: "Mot de passe"
            placeholderTextColor: AppTheme.placeholder
            font.family: AppTheme.fontFamily
            font.pixelSize: 18
            font.weight: Font.Bold
            color: AppTheme.text
            selectionColor: AppTheme.selection
            selectedTextColor: "white"
            padding: 16
            background: Surface {
                radius: 18
                gradient: AppTheme.inputSurface
                borderColor: AppTheme.fieldLine

                FocusRing {
                    control: passwordField
                    shapeRadius: 18
                }
            }
            text: root.lockState.password
            onTextEdited: root.lockState.password = text
            onAccepted: root.lockState.unlock()
            Component.onCompleted: forceActiveFocus()
        }

        ToolbarButton {
            objectName: "unlockButton"
            text: "Entrer dans Velino"
            primary: true
            onClicked: root.lockState.unlock()
        }

        Text {
            objectName: "lockError"
            Layout.fillWidth: true
            Layout.minimumHeight: 18
            text: root.lockState.errorText
            // Read out as soon as it appears.
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
            font.family: AppTheme.fontFamily
            font.pixelSize: 13
            font.weight: Font.Bold
            color: root.errorColor
            horizontalAlignment: Text.AlignLeft
            wrapMode: Text.Wrap
        }
    }
}
