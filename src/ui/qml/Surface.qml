import QtQuick
import Velino

// A rounded rectangle filled with a colour or an AppTheme gradient (from the top-leading
// to the bottom-trailing corner), stroked with a 1-point border on top, with an optional
// drop shadow behind it.
//
// Nothing here needs an offscreen pass, so frames stay cheap even where the window is
// drawn in software: the shadow is a nine-patch image made once per corner radius, blur
// and colour (SurfaceImages.shadow), a rounded surface takes its gradient's two stops
// along its longer side (on these faint gradients the same to the eye as the diagonal),
// and only square-cornered surfaces (window, header and pane backgrounds), which need no
// mask, get the exact diagonal gradient.
Item {
    id: root

    property real radius: 0
    property color color: "transparent"
    property Gradient gradient: null
    property color borderColor: "transparent"
    property real borderWidth: 1
    property color shadowColor: "transparent"
    property real shadowRadius: 0
    property real shadowOffsetX: 0
    property real shadowOffsetY: 0

    readonly property bool hasShadow: shadowColor.a > 0 && shadowRadius > 0
    readonly property bool hasGradient: gradient !== null
    readonly property bool roundedGradient: hasGradient && radius > 0

    // The gradient's first and last colours (gradient stops announce no changes: they are
    // read again whenever another gradient is set).
    property color firstStop: "transparent"
    property color lastStop: "transparent"
    function readStops() {
        const stops = gradient ? gradient.stops : []
        firstStop = stops.length > 0 ? stops[0].color : "transparent"
        lastStop = stops.length > 0 ? stops[stops.length - 1].color : "transparent"
    }
    onGradientChanged: readStops()
    Component.onCompleted: readStops()

    readonly property int shadowExtent: Math.round(shadowRadius)
    readonly property int shadowCorner: Math.round(Math.max(0, Math.min(radius, width / 2, height / 2)))

    BorderImage {
        objectName: "shadow"
        visible: root.hasShadow
        x: root.shadowOffsetX - root.shadowExtent
        y: root.shadowOffsetY - root.shadowExtent
        width: root.width + 2 * root.shadowExtent
        height: root.height + 2 * root.shadowExtent
        source: root.hasShadow ? SurfaceImages.shadow(root.shadowCorner, root.shadowExtent, root.shadowColor) : ""
        border.left: root.shadowExtent + root.shadowCorner
        border.right: root.shadowExtent + root.shadowCorner
        border.top: root.shadowExtent + root.shadowCorner
        border.bottom: root.shadowExtent + root.shadowCorner
        smooth: true
    }

    // Square corners: the diagonal gradient, an image stretched over the surface.
    Image {
        objectName: "diagonalFill"
        anchors.fill: parent
        visible: root.hasGradient && !root.roundedGradient
        source: visible ? SurfaceImages.diagonalGradient(root.gradient) : ""
        smooth: true
        cache: true
    }

    Rectangle {
        objectName: "gradientFill"
        anchors.fill: parent
        visible: root.roundedGradient
        radius: root.radius
        antialiasing: true
        gradient: Gradient {
            orientation: root.width >= root.height ? Gradient.Horizontal : Gradient.Vertical
            GradientStop {
                position: 0
                color: root.firstStop
            }
            GradientStop {
                position: 1
                color: root.lastStop
            }
        }
    }

    Rectangle {
        objectName: "colorFill"
        anchors.fill: parent
        visible: !root.hasGradient
        radius: root.radius
        antialiasing: true
        color: root.color
    }

    Rectangle {
        anchors.fill: parent
        radius: root.radius
        antialiasing: true
        color: "transparent"
        border.color: root.borderColor
        border.width: root.borderColor.a > 0 ? root.borderWidth : 0
        visible: root.borderColor.a > 0
    }
}
