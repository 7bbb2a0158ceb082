import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velino

// A menu of the window's menu bar, in the window's dark palette, with each item's
// shortcut shown on the right.
Menu {
    id: menu

    font.family: AppTheme.fontFamily
    font.pixelSize: 13
    topPadding: 6
    bottomPadding: 6

    background: Rectangle {
        implicitWidth: 240
        radius: 10
        color: Qt.rgba(0.07, 0.09, 0.14, 0.98)
        border.color: AppTheme.inputLine
        border.width: 1
    }

    delegate: MenuItem {
        id: item

        implicitHeight: 30
        leftPadding: 14
        rightPadding: 14
        font: menu.font

        contentItem: RowLayout {
            spacing: 24
            Text {
                Layout.fillWidth: true
                text: item.text
                font: item.font
                color: item.enabled ? (item.highlighted ? "white" : AppTheme.text) : AppTheme.placeholder
                elide: Text.ElideRight
                verticalAlignment: Text.AlignVCenter
            }
            Text {
                text: item.action ? UiHelpers.shortcutText(item.action.shortcut) : ""
                font: item.font
                color: item.highlighted ? Qt.rgba(1, 1, 1, 0.8) : AppTheme.muted
                verticalAlignment: Text.AlignVCenter
            }
        }

        background: Item {
            implicitWidth: 220
            Rectangle {
                anchors.fill: parent
                anchors.leftMargin: 6
                anchors.rightMargin: 6
                radius: 6
                color: AppTheme.accent
                visible: item.highlighted
            }
        }
    }
}
