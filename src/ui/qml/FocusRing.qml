import QtQuick
import Velino

// The keyboard focus ring: a 2-point line in the focus colour drawn 3 points outside its
// parent's rounded shape, while `control` has the focus from the keyboard (Tab, Shift+Tab,
// a shortcut), not after a click.
Rectangle {
    property Item control
    readonly property bool shown: control !== null && control.activeFocus
                                  && (control.focusReason === undefined // items that only Tab focuses
                                      || control.focusReason === Qt.TabFocusReason
                                      || control.focusReason === Qt.BacktabFocusReason
                                      || control.focusReason === Qt.ShortcutFocusReason
                                      || control.focusReason === Qt.OtherFocusReason)
    // The corner radius of the shape it surrounds.
    property real shapeRadius: 0

    anchors.fill: parent
    anchors.margins: -3
    radius: shapeRadius + 3
    color: "transparent"
    border.width: 2
    border.color: AppTheme.focusRing
    visible: shown
}
