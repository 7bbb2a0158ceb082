import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Velino

// A compact row of mutually exclusive choices. `labels` are shown left to right;
// `currentIndex` is the chosen one and chosen() reports a choice. Each segment is in the
// Tab order and a radio button for a screen reader; the arrow keys move the choice.
Item {
    id: root

    property var labels: []
    property int currentIndex: 0
    property string accessibleName

    signal chosen(int index)

    implicitWidth: row.implicitWidth + 6
    implicitHeight: row.implicitHeight + 6
    Accessible.role: Accessible.Grouping
    Accessible.name: accessibleName

    Surface {
        anchors.fill: parent
        radius: 12
        color: AppTheme.buttonSurface
        borderColor: AppTheme.line
    }

    RowLayout {
        id: row
        anchors.centerIn: parent
        spacing: 2

        Repeater {
            id: segments
            model: root.labels
            T.Button {
                id: segment
                required property int index
                required property string modelData
                readonly property bool selected: index === root.currentIndex
                objectName: "segment." + index
                text: modelData
                focusPolicy: Qt.TabFocus
                leftPadding: 12
                rightPadding: 12
                topPadding: 6
                bottomPadding: 6
                implicitWidth: implicitContentWidth + leftPadding + rightPadding
                implicitHeight: implicitContentHeight + topPadding + bottomPadding
                font.family: AppTheme.fontFamily
                font.pixelSize: 12
                font.weight: Font.DemiBold
                Accessible.role: Accessible.RadioButton
                Accessible.checkable: true
                Accessible.checked: selected
                Accessible.onPressAction: root.chosen(index)
                onClicked: root.chosen(index)
                Keys.onReturnPressed: root.chosen(index)
                Keys.onRightPressed: root.move(1)
                Keys.onLeftPressed: root.move(-1)

                contentItem: Text {
                    text: segment.text
                    font: segment.font
                    color: segment.selected ? "white" : AppTheme.text
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
                background: Surface {
                    radius: 9
                    color: segment.selected ? AppTheme.accentFill : "transparent"

                    FocusRing {
                        control: segment
                        shapeRadius: 9
                    }
                }
            }
        }
    }

    function move(step) {
        const next = Math.max(0, Math.min(labels.length - 1, currentIndex + step))
        if (next === currentIndex)
            return
        chosen(next)
        segments.itemAt(next).forceActiveFocus(Qt.TabFocusReason)
    }
}
