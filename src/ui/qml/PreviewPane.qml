import QtQuick
import QtQuick.Layouts
import Velino

// The preview column: the title with the three copy actions, four summary cards, and the
// live e-mail preview of the store's generated HTML.
Item {
    id: root

    required property WindowController controller
    readonly property ComposerStore store: controller.store
    readonly property alias preview: preview

    PreviewDocument {
        id: previewDocument
        store: root.store
    }

    PreviewMode {
        id: previewMode
    }
    readonly property alias previewMode: previewMode
    readonly property real htmlBytes: UiHelpers.utf8Size(root.store.generatedHTML)

    // The previewSurface gradient's ends, read once (stops announce no changes).
    property color surfaceStart
    property color surfaceEnd
    Component.onCompleted: {
        const stops = AppTheme.previewSurface.stops
        surfaceStart = stops[0].color
        surfaceEnd = stops[stops.length - 1].color
    }

    // The previewSurface gradient at a point of the preview frame, for the corner caps.
    function surfaceColorAt(x, y) {
        const w = Math.max(1, previewFrameItem.width)
        const h = Math.max(1, previewFrameItem.height)
        const t = Math.max(0, Math.min(1, (x * w + y * h) / (w * w + h * h)))
        const a = surfaceStart
        const b = surfaceEnd
        return Qt.rgba(a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1)
    }

    Surface {
        anchors.fill: parent
        gradient: AppTheme.previewBackground
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 24
        spacing: 18

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: false
            spacing: 12

            ColumnLayout {
                Layout.alignment: Qt.AlignVCenter
                spacing: 6
                Text {
                    objectName: "previewTitle"
                    text: "Previsualisation"
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 24
                    font.weight: Font.Bold
                    color: AppTheme.text
                }
                Text {
                    objectName: "previewSubtitle"
                    text: "Mail client Korvel"
                    font.family: AppTheme.fontFamily
                    font.pixelSize: 13
                    font.weight: Font.Medium
                    color: AppTheme.muted
                }
            }

            Item {
                Layout.fillWidth: true // pushes the copy buttons to the right edge
            }

            RowLayout {
                Layout.alignment: Qt.AlignVCenter
                spacing: 8
                ToolbarButton {
                    objectName: "copySubjectButton"
                    text: "Copier objet"
                    onClicked: root.store.copySubject()
                }
                ToolbarButton {
                    objectName: "copyTextButton"
                    text: "Copier texte"
                    onClicked: root.store.copyPlainText()
                }
                ToolbarButton {
                    objectName: "copyMailButton"
                    text: "Copier mail"
                    primary: true
                    onClicked: root.store.copyHTML()
                }
            }
        }

        RowLayout {
            objectName: "summaryRow"
            Layout.fillWidth: true
            Layout.fillHeight: false
            spacing: 14

            SummaryCard {
                objectName: "summary.state"
                Layout.fillHeight: true
                title: "Etat"
                value: root.store.currentFormatStatus
                caption: "Version actuelle"
            }
            SummaryCard {
                objectName: "summary.recipient"
                Layout.fillHeight: true
                title: "Destinataire"
                value: root.store.previewRecipientName
                caption: root.store.previewRecipientEmail
            }
            SummaryCard {
                objectName: "summary.details"
                Layout.fillHeight: true
                title: "Bloc infos"
                value: root.controller.detailsCountText
                caption: "ligne(s) affichee(s)"
            }
            SummaryCard {
                objectName: "summary.apple"
                Layout.fillHeight: true
                title: root.controller.mailSummaryTitle
                value: root.controller.mailSummaryValue
                caption: root.store.appleConnectionHintText
            }
        }

        // How the e-mail is shown; only the view changes.
        SegmentedControl {
            objectName: "previewModes"
            Layout.alignment: Qt.AlignLeft
            accessibleName: "Mode d'apercu"
            labels: ["Bureau", "Telephone", "Sombre", "Sans images"]
            currentIndex: previewMode.mode
            onChosen: (index) => previewMode.mode = index
        }

        MutedText {
            objectName: "shortenedPreviewNote"
            Layout.fillWidth: true
            visible: previewDocument.isShortened
            text: "Apercu abrege : un texte tres long y est coupe. Le mail copie, exporte ou envoye le garde en entier."
        }

        Item {
            id: previewFrameItem
            objectName: "previewFrame"
            Layout.fillWidth: true
            Layout.fillHeight: true

            Surface {
                anchors.fill: parent
                radius: 26
                gradient: AppTheme.previewSurface
                borderColor: AppTheme.line
                shadowColor: AppTheme.withOpacity(AppTheme.accent, 0.12)
                shadowRadius: 32
                shadowOffsetY: 18
            }

            HTMLPreviewView {
                id: preview
                objectName: "htmlPreview"
                anchors.fill: parent
                anchors.margins: 14
                html: previewDocument.html
                mode: previewMode.mode
                serviceHost: root.controller.serviceHost
                // The page is reloaded after every change the store publishes.
                changeSource: root.store
            }

            // The web view cannot be clipped to a rounded shape without an offscreen pass
            // on every frame: its corners are rounded (radius 22) by caps in the colour of
            // the surface around them.
            Repeater {
                model: 4
                Image {
                    required property int index
                    readonly property bool atRight: index === 1 || index === 2
                    readonly property bool atBottom: index >= 2
                    objectName: "previewCorner" + index
                    // At the web view's own corners (narrower than the frame at phone width).
                    x: preview.x + preview.webView.x + (atRight ? preview.webView.width - width : 0)
                    y: atBottom ? preview.y + preview.height - height : preview.y
                    width: 22
                    height: 22
                    rotation: index * 90
                    source: SurfaceImages.cornerCap(22, root.surfaceColorAt(x + width / 2, y + height / 2))
                }
            }
        }

        RowLayout {
            objectName: "mailSizeLine"
            Layout.fillWidth: true
            spacing: 12
            MutedText {
                objectName: "mailSize"
                text: UiHelpers.mailSizeText(root.htmlBytes)
                Accessible.name: text
            }
            Text {
                objectName: "gmailClipWarning"
                Layout.fillWidth: true
                visible: UiHelpers.isClippedByGmail(root.htmlBytes)
                text: "Gmail coupera ce mail apres 102 Ko."
                font.family: AppTheme.fontFamily
                font.pixelSize: 12
                font.weight: Font.DemiBold
                color: AppTheme.orange
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
}
