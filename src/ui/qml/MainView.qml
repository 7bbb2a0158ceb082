import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Velino

// The main window content, once unlocked: the header band, a divider, then the form and
// the live preview side by side in a split view whose divider the user may drag.
Item {
    id: root

    required property WindowController controller
    readonly property alias header: header
    readonly property alias composerPane: composer
    readonly property alias previewPane: previewPane

    Component.onCompleted: composer.focusFirstField()

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        HeaderBand {
            id: header
            objectName: "headerBand"
            Layout.fillWidth: true
            controller: root.controller
        }

        Rectangle {
            objectName: "headerDivider"
            Layout.fillWidth: true
            Layout.preferredHeight: 1
            color: AppTheme.line
        }

        SplitView {
            id: split
            objectName: "splitView"
            Layout.fillWidth: true
            Layout.fillHeight: true
            orientation: Qt.Horizontal

            handle: Item {
                implicitWidth: 1
                Rectangle {
                    anchors.fill: parent
                    color: T.SplitHandle.pressed || T.SplitHandle.hovered ? AppTheme.inputLine : AppTheme.line
                }
                // A wider grip than the line itself.
                containmentMask: Item {
                    x: -4
                    width: 9
                    height: split.height
                }
            }

            ComposerPane {
                id: composer
                objectName: "composerPane"
                controller: root.controller
                SplitView.minimumWidth: 540
                // All the width the preview can spare at the smallest window (it keeps its
                // 620), so that the form's two-column rows and the sync card have room;
                // on wider windows a little under half.
                SplitView.preferredWidth: Math.max(540, Math.min(split.width - 620 - 1,
                                                                 Math.round(Math.max(700, split.width * 0.45))))
            }

            PreviewPane {
                id: previewPane
                objectName: "previewPane"
                controller: root.controller
                SplitView.minimumWidth: 620
                SplitView.fillWidth: true
            }
        }
    }
}
