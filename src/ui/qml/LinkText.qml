import QtQuick
import Velino

// A text link: 12-point semibold in accentSoft, underlined while hovered, with the
// pointing-hand cursor. `url` is where it leads; the owner opens it on activated().
Text {
    id: root

    property url url

    signal activated()

    font.family: AppTheme.fontFamily
    font.pixelSize: 12
    font.weight: Font.DemiBold
    font.underline: mouse.containsMouse
    color: AppTheme.link

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.activated()
    }
}
