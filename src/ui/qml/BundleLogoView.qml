import QtQuick
import Qt5Compat.GraphicalEffects
import Velino

// The image resource `resourceName` (a PNG of the application) fitted in a size × size
// square with rounded corners; while it cannot be loaded, the same square filled with the
// accent gradient.
Item {
    id: root

    property string resourceName
    property real size: 62
    property real cornerRadius: 18

    readonly property bool showsImage: image.status === Image.Ready

    implicitWidth: size
    implicitHeight: size

    Image {
        id: image
        anchors.fill: parent
        source: UiHelpers.imageUrl(root.resourceName)
        fillMode: Image.PreserveAspectFit
        smooth: true
        mipmap: true
        visible: false
    }

    Rectangle {
        id: mask
        anchors.fill: parent
        radius: root.cornerRadius
        antialiasing: true
        visible: false
    }

    OpacityMask {
        objectName: "logoImage"
        anchors.fill: parent
        source: image
        maskSource: mask
        visible: root.showsImage
    }

    Surface {
        objectName: "logoPlaceholder"
        anchors.fill: parent
        visible: !root.showsImage
        radius: root.cornerRadius
        gradient: AppTheme.accentGradient
    }
}
