import QtQuick
import QtQuick.Layouts
import Velino

// A titled card of the form column. Children go below the header, in a column; give
// them Layout.fillWidth to take the card's width.
Item {
    id: root

    property string title
    property string subtitle
    default property alias content: body.data

    implicitWidth: column.implicitWidth + 2 * 18
    implicitHeight: column.implicitHeight + 2 * 18

    Surface {
        anchors.fill: parent
        radius: 24
        gradient: AppTheme.cardSurface
        borderColor: AppTheme.line
        shadowColor: AppTheme.shadow
        shadowRadius: 20
        shadowOffsetY: 12
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 18
        spacing: 16

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 6
            Text {
                objectName: "sectionTitle"
                Layout.fillWidth: true
                text: root.title
                font.family: AppTheme.fontFamily
                font.pixelSize: 18
                font.weight: Font.Bold
                color: AppTheme.text
                wrapMode: Text.Wrap
            }
            Text {
                objectName: "sectionSubtitle"
                Layout.fillWidth: true
                text: root.subtitle
                font.family: AppTheme.fontFamily
                font.pixelSize: 12
                font.weight: Font.Medium
                color: AppTheme.muted
                wrapMode: Text.Wrap
            }
        }

        ColumnLayout {
            id: body
            Layout.fillWidth: true
            spacing: 0
        }
    }
}
