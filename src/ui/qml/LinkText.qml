import QtQuick
import Velino

// A text link: 12-point semibold in accentSoft, underlined while hovered, with the
// pointing-hand cursor. `url` is where it leads; the owner opens it on activated(). It is
// in the Tab order, opened with Return or Space or a screen reader's press action.
Text {
    id: root

    property url url

    signal activated()

    activeFocusOnTab: true
    Accessible.role: Accessible.Link
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: activated()
    Keys.onReturnPressed: activated()
    Keys.onEnterPressed: activated()
    Keys.onSpacePressed: activated()

    font.family: AppTheme.fontFamily
    font.pixelSize: 12
    font.weight: Font.DemiBold
    font.underline: mouse.containsMouse
    color: AppTheme.link

    FocusRing {
        control: root
        shapeRadius: 4
        anchors.margins: -4
    }

    MouseArea {
        id: mouse
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: root.activated()
    }
}
