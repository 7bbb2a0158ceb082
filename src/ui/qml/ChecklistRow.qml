import QtQuick
import QtQuick.Layouts
import Velino

// One check of the quality checklist: an "OK" badge on green when it passes, an "A"
// (a revoir) badge on orange when it does not, then the sentence.
Item {
    id: root

    property bool ok: false
    property string text

    readonly property color tone: ok ? AppTheme.green : AppTheme.orange
    readonly property string mark: ok ? "OK" : "A"

    implicitWidth: row.implicitWidth + 24
    implicitHeight: row.implicitHeight + 24

    Surface {
        anchors.fill: parent
        radius: 16
        color: AppTheme.withOpacity(root.tone, root.ok ? 0.08 : 0.10)
        borderColor: AppTheme.withOpacity(root.tone, 0.18)
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 12
        spacing: 10

        Rectangle {
            objectName: "badge"
            Layout.alignment: Qt.AlignTop
            Layout.preferredWidth: 28
            Layout.preferredHeight: 28
            radius: 14
            antialiasing: true
            color: AppTheme.withOpacity(root.tone, root.ok ? 0.14 : 0.16)

            Text {
                objectName: "badgeMark"
                anchors.centerIn: parent
                text: root.mark
                font.family: AppTheme.fontFamily
                font.pixelSize: 11
                font.weight: Font.Bold
                color: root.tone
            }
        }

        Text {
            objectName: "checkText"
            Layout.alignment: Qt.AlignTop
            Layout.fillWidth: true
            text: root.text
            font.family: AppTheme.fontFamily
            font.pixelSize: 13
            font.weight: Font.Medium
            color: AppTheme.text
            wrapMode: Text.Wrap
        }
    }
}
