import QtQuick
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

    // Cut round once, at twice the size so that it stays sharp on high-density screens.
    Image {
        id: image
        objectName: "logoImage"
        anchors.fill: parent
        source: SurfaceImages.roundedImage(root.resourceName, root.cornerRadius / Math.max(1, root.size))
        sourceSize: Qt.size(2 * root.size, 2 * root.size)
        fillMode: Image.PreserveAspectFit
        smooth: true
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
