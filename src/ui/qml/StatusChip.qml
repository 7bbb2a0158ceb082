import QtQuick
import QtQuick.Controls.Basic
import Velino

// A capsule of bold text on a tinted fill: white, or dark on a light tint (cyan). Given
// less width than its text needs, the text is shortened and shown whole in a tooltip.
Item {
    id: root

    property string text
    property color tint: AppTheme.accent

    // A status a screen reader follows: its changes are announced.
    Accessible.role: Accessible.StatusBar
    Accessible.name: text

    implicitWidth: Math.ceil(label.implicitWidth) + 20
    implicitHeight: label.implicitHeight + 16

    Surface {
        anchors.fill: parent
        radius: height / 2
        color: AppTheme.withOpacity(root.tint, 0.92)
        borderColor: Qt.rgba(1, 1, 1, 0.08)
    }

    Text {
        id: label
        anchors.centerIn: parent
        width: Math.min(implicitWidth, root.width - 20)
        text: root.text
        font.family: AppTheme.fontFamily
        font.pixelSize: 11
        font.weight: Font.Bold
        color: AppTheme.textOn(root.tint)
        elide: Text.ElideRight
    }

    HoverHandler {
        id: hover
    }
    ToolTip.visible: label.truncated && hover.hovered
    ToolTip.text: root.text
}
