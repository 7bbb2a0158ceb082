import QtQuick
import QtQuick.Controls.Basic
import Velino

// The root view of one window: the background gradient under everything, the lock
// screen until the password is typed, then the main window content. Each window has its
// own lock state and its own composer store (in its WindowController), created with the
// window; the lock state is never saved. The window's modal dialogs (the reset
// confirmation, the store's alerts, the export's file dialog and its replacement
// question) are attached here. None of them blocks: each answers through a call.
ApplicationWindow {
    id: appWindow

    // The content is at least 1320 x 900; the menu bar, drawn inside the window here,
    // comes on top of that.
    readonly property int menuBarHeight: menuBar ? menuBar.implicitHeight : 0
    minimumWidth: 1320
    minimumHeight: 900 + menuBarHeight
    width: 1320
    height: 900 + menuBarHeight
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
    readonly property alias controller: controller
    readonly property alias resetAlert: resetAlert
    readonly property alias warningAlert: warningAlert
    readonly property alias replaceAlert: replaceAlert

    LockState {
        id: lockState
        objectName: "lockState"
    }

    WindowController {
        id: controller
        objectName: "windowController"
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
            title: "&Edition"
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
            title: "&Fenetre"
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

    // F10 opens the first menu, as in other desktop applications; Alt with the underlined
    // letter opens the others.
    Shortcut {
        sequence: "F10"
        onActivated: {
            const bar = appWindow.menuBar
            const item = bar.itemAt(0)
            bar.menuAt(0).popup(item, 0, item.height)
        }
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

    // Main window content, shown once unlocked. Loaded by URL so that its types (and the
    // web engine's) are only read when the window is first unlocked, not before the lock
    // screen can be drawn.
    Loader {
        id: mainLoader
        objectName: "mainLoader"
        anchors.fill: parent
        active: lockState.isUnlocked
        focus: active
        Component.onCompleted: setSource("MainView.qml", {
            objectName: "mainContent",
            controller: appWindow.controller,
            focus: true
        })
    }

    AlertDialog {
        id: resetAlert
        objectName: "resetAlert"
        title: "Revenir au template Korvel de base ?"
        message: "Le contenu actuel sera remplace par le modele natif par defaut."
        shown: controller.showResetAlert
        onEscapePressed: controller.cancelReset()
        defaultButton: resetCancelButton

        ToolbarButton {
            id: resetCancelButton
            objectName: "resetCancelButton"
            text: "Annuler"
            onClicked: controller.cancelReset()
        }
        ToolbarButton {
            objectName: "resetConfirmButton"
            text: "Reinitialiser"
            destructive: true
            onClicked: controller.confirmReset()
        }
    }

    // The export's save dialog, created when the store asks for one. Loaded by URL, so
    // that the dialog module is only read when first needed.
    readonly property var exportDialog: exportDialogLoader.item
    Loader {
        id: exportDialogLoader
        active: controller.dialogs.saveRequested
        onActiveChanged: if (active) setSource("ExportDialog.qml", { dialogs: controller.dialogs })
    }

    AlertDialog {
        id: replaceAlert
        objectName: "replaceAlert"
        z: 1
        title: "Velino"
        message: controller.dialogs.replaceQuestionText
        shown: controller.dialogs.replaceQuestionVisible
        onEscapePressed: controller.dialogs.declineReplace()
        defaultButton: replaceCancelButton

        ToolbarButton {
            id: replaceCancelButton
            objectName: "replaceCancelButton"
            text: "Annuler"
            onClicked: controller.dialogs.declineReplace()
        }
        ToolbarButton {
            objectName: "replaceConfirmButton"
            text: "Remplacer"
            destructive: true
            onClicked: controller.dialogs.confirmReplace()
        }
    }

    // The store's warnings, above every other dialog.
    AlertDialog {
        id: warningAlert
        objectName: "warningAlert"
        z: 2
        title: controller.dialogs.alertTitle
        message: controller.dialogs.alertText
        shown: controller.dialogs.alertVisible
        onEscapePressed: controller.dialogs.dismissAlert()
        onReturnPressed: controller.dialogs.dismissAlert()
        defaultButton: alertOkButton

        ToolbarButton {
            id: alertOkButton
            objectName: "alertOkButton"
            text: controller.dialogs.alertButtonText
            primary: true
            onClicked: controller.dialogs.dismissAlert()
        }
    }
}
