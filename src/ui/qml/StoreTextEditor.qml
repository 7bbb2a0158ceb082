import QtQuick
import QtQuick.Layouts
import Velino

// A LabeledTextEditor showing one field of the store's content record.
LabeledTextEditor {
    id: root

    required property ComposerStore store
    required property string fieldName

    objectName: "field." + fieldName
    Layout.fillWidth: true

    text: store.data[fieldName]
    onEdited: (value) => store.setDataField(fieldName, value)
}
