import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Velino

// A built-in preset tile: the preset's title over its one-line summary. Active: white
// text on the accent gradient with an accent shadow; inactive: the button surface with
// a line border. Pressed: scaled to 0.99, eased out over 0.14 s. In a row layout the
// tiles share the width equally.
T.Button {
    id: control

    Layout.fillWidth: true
    Layout.preferredWidth: 1

    property bool isActive: false
    property string summary

    // In the Tab order (a click leaves the focus where it is); Space, Return and a screen
    // reader's press action apply the preset; the arrow keys move to the next tile.
    focusPolicy: Qt.TabFocus
    Accessible.name: text + " : " + summary
    Accessible.checkable: true
    Accessible.checked: isActive
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onRightPressed: moveFocus(true)
    Keys.onLeftPressed: moveFocus(false)

    function moveFocus(forward) {
        const next = nextItemInFocusChain(forward)
        if (next && next.isPresetTile === true)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason)
    }
    readonly property bool isPresetTile: true
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding)
    padding: 12
    font.family: AppTheme.fontFamily
    font.pixelSize: 14
    font.weight: Font.DemiBold

    opacity: enabled ? 1.0 : 0.45
    scale: down ? 0.99 : 1.0
    Behavior on scale { NumberAnimation { duration: 140; easing.type: Easing.BezierSpline; easing.bezierCurve: [0.0, 0.0, 0.58, 1.0, 1.0, 1.0] } }

    contentItem: ColumnLayout {
        spacing: 4
        Text {
            Layout.fillWidth: true
            text: control.text
            font: control.font
            color: control.isActive ? "white" : AppTheme.text
            elide: Text.ElideRight
        }
        Text {
            Layout.fillWidth: true
            text: control.summary
            font.family: AppTheme.fontFamily
            font.pixelSize: 11
            font.weight: Font.Medium
            color: control.isActive ? "white" : AppTheme.secondaryLabel
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignLeft
        }
    }

    background: Surface {
        radius: 18
        gradient: control.isActive ? AppTheme.accentFillGradient : null
        color: control.isActive ? "transparent"
                                : AppTheme.withOpacity(AppTheme.buttonSurface, control.down ? 0.84 : 0.92)
        borderColor: control.isActive ? "transparent" : AppTheme.line
        shadowColor: control.isActive ? AppTheme.withOpacity(AppTheme.accent, 0.26) : Qt.rgba(0, 0, 0, 0.18)
        shadowRadius: control.isActive ? 18 : 10
        shadowOffsetY: 10
        Behavior on color { ColorAnimation { duration: 140; easing.type: Easing.BezierSpline; easing.bezierCurve: [0.0, 0.0, 0.58, 1.0, 1.0, 1.0] } }

        FocusRing {
            control: control
            shapeRadius: 18
        }
    }
}
