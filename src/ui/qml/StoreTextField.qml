import QtQuick
import QtQuick.Layouts
import Velino

// A LabeledTextField showing one field of the store's content record; every keystroke
// hands the new text to the store, whose own pipeline regenerates and saves.
LabeledTextField {
    id: root

    required property ComposerStore store
    required property string fieldName

    objectName: "field." + fieldName
    Layout.fillWidth: true
    Layout.preferredWidth: 1
    Layout.minimumWidth: 10

    text: store.data[fieldName]
    onEdited: (value) => store.setDataField(fieldName, value)
}
