import QtQuick
import QtQuick.Templates as T
import Velino

// Every button but the preset tiles. Primary: white label on the accent gradient with an
// accent shadow; secondary: flat button surface with a line border and a light shadow.
// Pressed: 0.9 opacity and 0.985 scale, eased out over 0.12 s. It is in the Tab order
// but, like a native button, a click does not take the keyboard focus from the text being
// edited. Space and Return press it, and so does a screen reader's press action; a ring
// in the focus colour shows the keyboard focus. A destructive button
// (the reset confirmation's) writes its label in red. Given less width than its label
// needs, the label wraps onto further lines.
T.Button {
    id: control

    property bool primary: false
    property bool destructive: false

    // Read after the label, e.g. the preset a row's button acts on.
    property string accessibleContext

    focusPolicy: Qt.TabFocus
    Accessible.name: accessibleContext.length > 0 ? text + " : " + accessibleContext : text
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()
    implicitWidth: Math.max(implicitBackgroundWidth + leftInset + rightInset,
                            implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Math.max(implicitBackgroundHeight + topInset + bottomInset,
                             implicitContentHeight + topPadding + bottomPadding)
    leftPadding: 16
    rightPadding: 16
    topPadding: 10
    bottomPadding: 10

    font.family: AppTheme.fontFamily
    font.pixelSize: 13
    font.weight: Font.DemiBold

    // Disabled: dimmed as a disabled native control, on top of the style.
    opacity: !enabled ? 0.45 : (down ? 0.9 : 1.0)
    scale: down ? 0.985 : 1.0
    Behavior on opacity { NumberAnimation { duration: 120; easing.type: Easing.BezierSpline; easing.bezierCurve: [0.0, 0.0, 0.58, 1.0, 1.0, 1.0] } }
    Behavior on scale { NumberAnimation { duration: 120; easing.type: Easing.BezierSpline; easing.bezierCurve: [0.0, 0.0, 0.58, 1.0, 1.0, 1.0] } }

    contentItem: Text {
        text: control.text
        font: control.font
        color: control.primary ? "white" : (control.destructive ? AppTheme.destructive : AppTheme.text)
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        maximumLineCount: 3
    }

    background: Surface {
        radius: 14
        gradient: control.primary ? AppTheme.accentFillGradient : null
        color: control.primary ? "transparent" : AppTheme.buttonSurface
        borderColor: control.primary ? "transparent" : AppTheme.line
        shadowColor: control.primary ? AppTheme.withOpacity(AppTheme.accent, 0.24) : Qt.rgba(0, 0, 0, 0.12)
        shadowRadius: control.primary ? 16 : 8
        shadowOffsetY: 8

        FocusRing {
            control: control
            shapeRadius: 14
        }
    }
}
