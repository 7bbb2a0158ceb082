import QtQuick
import QtQuick.Layouts
import Velino

// A figure of the preview column: title in capitals, value, caption. It takes the whole
// width it is given, so cards in a row share it equally.
Item {
    id: root

    Layout.fillWidth: true
    Layout.preferredWidth: 1

    property string title
    property string value
    property string caption

    Accessible.role: Accessible.StaticText
    Accessible.name: title + " : " + value + ", " + caption

    implicitWidth: column.implicitWidth + 32
    implicitHeight: column.implicitHeight + 32

    Surface {
        anchors.fill: parent
        radius: 22
        gradient: AppTheme.cardSurface
        borderColor: AppTheme.line
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 16
        spacing: 6

        Text {
            objectName: "summaryTitle"
            Layout.fillWidth: true
            text: UiHelpers.upperCased(root.title)
            font.family: AppTheme.fontFamily
            font.pixelSize: 11
            font.weight: Font.Bold
            color: AppTheme.muted
            elide: Text.ElideRight
        }
        Text {
            id: valueText
            objectName: "summaryValue"
            // A word too wide for the card ("Thunderbird") makes the value smaller, not broken.
            readonly property int fullSize: 22
            Layout.fillWidth: true
            text: root.value
            font.family: AppTheme.fontFamily
            font.pixelSize: Math.max(14, Math.min(fullSize, Math.floor(fullSize * width / Math.max(1, longestWord.advanceWidth))))
            font.weight: Font.Bold
            color: AppTheme.text
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight

            TextMetrics {
                id: longestWord
                font.family: AppTheme.fontFamily
                font.pixelSize: valueText.fullSize
                font.weight: Font.Bold
                text: root.value.split(/\s+/).reduce((longest, word) => word.length > longest.length ? word : longest, "")
            }
        }
        Text {
            objectName: "summaryCaption"
            Layout.fillWidth: true
            text: root.caption
            font.family: AppTheme.fontFamily
            font.pixelSize: 12
            font.weight: Font.Medium
            color: AppTheme.muted
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        Item {
            Layout.fillHeight: true
        }
    }
}
