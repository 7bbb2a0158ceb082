import QtQuick
import QtQuick.Layouts
import Velino

// A BrandingColorField showing one colour field of the store's content record.
BrandingColorField {
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
