import QtQuick
import QtQuick.Controls.Basic
import Velino

// The root view of one window: the background gradient under everything, the lock
// screen until the password is typed, then the main window content. Each window has its
// own lock state; nothing of it is saved.
ApplicationWindow {
    id: appWindow

    minimumWidth: 1320
    minimumHeight: 900
    width: 1320
    height: 900
    title: Qt.application.name
    color: AppTheme.backgroundBase

    // Dark appearance for every control left to the style (menus, scroll bars).
    palette {
        window: AppTheme.backgroundBase
        windowText: AppTheme.text
        base: Qt.rgba(0.07, 0.09, 0.14, 1)
        alternateBase: Qt.rgba(0.05, 0.07, 0.11, 1)
        text: AppTheme.text
        button: Qt.rgba(0.07, 0.09, 0.14, 1)
        buttonText: AppTheme.text
        brightText: "white"
        highlight: AppTheme.accent
        highlightedText: "white"
        light: Qt.rgba(0.12, 0.14, 0.20, 1)
        midlight: Qt.rgba(0.10, 0.12, 0.18, 1)
        mid: Qt.rgba(0.16, 0.18, 0.24, 1)
        dark: Qt.rgba(0.02, 0.03, 0.06, 1)
        shadow: "black"
        placeholderText: AppTheme.placeholder
        toolTipBase: Qt.rgba(0.07, 0.09, 0.14, 1)
        toolTipText: AppTheme.text
    }

    readonly property alias lockState: lockState
    readonly property alias editCommands: editCommands

    LockState {
        id: lockState
        objectName: "lockState"
    }

    EditCommands {
        id: editCommands
        window: appWindow
    }

    menuBar: MenuBar {
        objectName: "menuBar"
        font.family: AppTheme.fontFamily
        font.pixelSize: 13
        background: Rectangle {
            implicitHeight: 30
            color: Qt.rgba(0.02, 0.03, 0.06, 1)
            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: 1
                color: AppTheme.line
            }
        }

        AppMenu {
            title: "Edition"
            Action {
                objectName: "cutAction"
                text: "Couper"
                shortcut: StandardKey.Cut
                onTriggered: editCommands.cut()
            }
            Action {
                objectName: "copyAction"
                text: "Copier"
                shortcut: StandardKey.Copy
                onTriggered: editCommands.copy()
            }
            Action {
                objectName: "pasteAction"
                text: "Coller"
                shortcut: StandardKey.Paste
                onTriggered: editCommands.paste()
            }
            Action {
                objectName: "selectAllAction"
                text: "Tout selectionner"
                shortcut: StandardKey.SelectAll
                onTriggered: editCommands.selectAll()
            }
        }

        AppMenu {
            title: "Fenetre"
            Action {
                objectName: "newWindowAction"
                text: "Nouvelle fenetre"
                shortcut: StandardKey.New
                onTriggered: AppShell.openWindow()
            }
        }
    }

    background: Surface {
        gradient: AppTheme.background
    }

    Loader {
        id: lockLoader
        objectName: "lockLoader"
        anchors.centerIn: parent
        active: !lockState.isUnlocked
        focus: active
        sourceComponent: LockView {
            lockState: appWindow.lockState
            focus: true
        }
    }

    // Main window content, shown once unlocked.
    Loader {
        id: mainLoader
        objectName: "mainLoader"
        anchors.fill: parent
        active: lockState.isUnlocked
        focus: active
        sourceComponent: Item {
            objectName: "mainContent"
            focus: true
        }
    }
}
