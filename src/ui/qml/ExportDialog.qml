import QtQuick
import QtQuick.Dialogs
import Velino

// The export's save dialog: the platform's own where the desktop offers one, else Qt
// Quick's. It opens as soon as it is created and answers `dialogs`, which adds the
// extension. It does not ask before replacing a file: the window asks, once, in its own
// alert.
FileDialog {
    required property WindowDialogs dialogs

    objectName: "exportDialog"
    title: dialogs.saveTitle
    fileMode: FileDialog.SaveFile
    nameFilters: ["Pages HTML (*.html *.htm)"]
    options: FileDialog.DontConfirmOverwrite
    currentFolder: dialogs.saveFolder
    selectedFile: dialogs.suggestedFile
    onAccepted: dialogs.chooseSaveFile(selectedFile)
    onRejected: dialogs.cancelSave()
    Component.onCompleted: open()
}
