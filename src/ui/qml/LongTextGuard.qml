import QtQuick
import QtQuick.Layouts
import Velino

// Stands in for a form control whose text is too long to lay out without freezing the
// window (more than LongText.threshold characters): a read-only summary with the size and
// the start of the text, and "Modifier quand meme", which hands the whole text to the
// control. The control shows `shownText` ("" while guarded) and reports as an edit only a
// text different from it, so the record keeps the whole text.
Item {
    id: root

    property string title
    property string fullText
    property int summaryLines: 1
    // A box of its own, for controls whose box is the editor's background.
    property bool framed: false
    property bool editAnyway: false
    // Both read fullText directly: a binding chained on the other could be stale for a moment.
    readonly property bool guarding: !editAnyway && LongText.isLong(fullText)
    readonly property string shownText: !editAnyway && LongText.isLong(fullText) ? "" : fullText
    readonly property alias editButton: editButton

    signal editRequested()

    visible: guarding
    implicitWidth: row.implicitWidth + row.anchors.leftMargin + row.anchors.rightMargin
    implicitHeight: row.implicitHeight + row.anchors.topMargin + row.anchors.bottomMargin

    // Back under the guard once the text is short again.
    onFullTextChanged: if (editAnyway && !LongText.isLong(fullText)) editAnyway = false

    Surface {
        anchors.fill: parent
        visible: root.framed
        radius: 12
        gradient: AppTheme.inputSurface
        borderColor: AppTheme.fieldLine
    }

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: root.framed ? 12 : 0
        anchors.rightMargin: root.framed ? 8 : 0
        anchors.topMargin: root.framed ? 8 : 0
        anchors.bottomMargin: root.framed ? 8 : 0
        spacing: 10

        Text {
            id: summary
            objectName: "longTextSummary"
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignVCenter
            text: root.guarding ? LongText.summary(root.fullText) : ""
            font.family: AppTheme.fontFamily
            font.pixelSize: 12
            font.weight: Font.Medium
            color: AppTheme.muted
            wrapMode: root.summaryLines > 1 ? Text.Wrap : Text.NoWrap
            maximumLineCount: root.summaryLines
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: root.title + " : " + text
            Accessible.ignored: !root.guarding
        }

        ToolbarButton {
            id: editButton
            objectName: "editAnywayButton"
            Layout.alignment: Qt.AlignVCenter
            text: "Modifier quand meme"
            topPadding: 7
            bottomPadding: 7
            focusPolicy: Qt.StrongFocus
            Accessible.name: text + " : " + root.title
            Accessible.description: summary.text
            Accessible.ignored: !root.guarding
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            onClicked: {
                root.editAnyway = true
                root.editRequested()
            }
        }
    }
}
