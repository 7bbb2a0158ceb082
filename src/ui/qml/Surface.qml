import QtQuick
import Qt5Compat.GraphicalEffects
import Velino

// A rounded rectangle filled with a colour or an AppTheme gradient (from the top-leading
// to the bottom-trailing corner), stroked with a 1-point border on top, with an optional
// drop shadow behind it.
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

    Rectangle {
        id: shape
        anchors.fill: parent
        radius: root.radius
        antialiasing: true
        color: root.hasGradient ? "white" : root.color
        visible: !root.hasGradient && !root.hasShadow
    }

    LinearGradient {
        id: gradientFill
        anchors.fill: parent
        visible: root.hasGradient && !root.hasShadow
        start: Qt.point(0, 0)
        end: Qt.point(width, height)
        gradient: root.gradient
        source: root.radius > 0 ? shape : null
        cached: true
    }

    DropShadow {
        anchors.fill: parent
        visible: root.hasShadow
        source: root.hasGradient ? gradientFill : shape
        color: root.shadowColor
        radius: root.shadowRadius
        samples: Math.min(Math.ceil(root.shadowRadius) * 2 + 1, 65)
        horizontalOffset: root.shadowOffsetX
        verticalOffset: root.shadowOffsetY
        transparentBorder: true
        cached: true
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
