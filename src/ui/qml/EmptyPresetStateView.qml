import QtQuick
import QtQuick.Layouts
import QtQuick.Shapes
import Velino

// Shown in place of the saved-preset list while it is empty.
Item {
    id: root

    implicitWidth: row.implicitWidth + 32
    implicitHeight: row.implicitHeight + 32

    Surface {
        anchors.fill: parent
        radius: 18
        gradient: AppTheme.inputSurface
        borderColor: AppTheme.fieldLine
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 16
        spacing: 12

        // An empty tray: a box whose top edge dips into a slot.
        Shape {
            objectName: "trayGlyph"
            Layout.alignment: Qt.AlignVCenter
            Layout.preferredWidth: 22
            Layout.preferredHeight: 18
            layer.enabled: true
            layer.samples: 4
            ShapePath {
                strokeColor: AppTheme.accent
                strokeWidth: 2.2
                fillColor: "transparent"
                capStyle: ShapePath.RoundCap
                joinStyle: ShapePath.RoundJoin
                // Outer box, opened at the top.
                startX: 4; startY: 2
                PathLine { x: 18; y: 2 }
                PathLine { x: 21; y: 10 }
                PathLine { x: 21; y: 15 }
                PathQuad { x: 19; y: 17; controlX: 21; controlY: 17 }
                PathLine { x: 3; y: 17 }
                PathQuad { x: 1; y: 15; controlX: 1; controlY: 17 }
                PathLine { x: 1; y: 10 }
                PathLine { x: 4; y: 2 }
            }
            ShapePath {
                strokeColor: AppTheme.accent
                strokeWidth: 2.2
                fillColor: "transparent"
                capStyle: ShapePath.RoundCap
                joinStyle: ShapePath.RoundJoin
                // The slot: the inner line dipping between the two rims.
                startX: 1; startY: 10
                PathLine { x: 7; y: 10 }
                PathLine { x: 8; y: 12.5 }
                PathLine { x: 14; y: 12.5 }
                PathLine { x: 15; y: 10 }
                PathLine { x: 21; y: 10 }
            }
        }

        Text {
            objectName: "emptyText"
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignVCenter
            text: "Enregistre un preset perso pour rappeler un mail entier, ses champs et sa signature en un clic."
            font.family: AppTheme.fontFamily
            font.pixelSize: 13
            font.weight: Font.Medium
            color: AppTheme.muted
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
        }
    }
}
