import QtQuick
import QtQuick.Window
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velino

// The form column: nine cards in a vertical scroll area. Every field shows one field of
// the store's content record and hands each edit back to it; every button calls one
// store operation.
Item {
    id: root

    required property WindowController controller
    readonly property ComposerStore store: controller.store
    readonly property alias scrollView: scroll

    Surface {
        anchors.fill: parent
        gradient: AppTheme.panelBackground
    }

    // The control with the keyboard focus is kept fully in view, with its label; the page
    // keys scroll the form (Ctrl+Home and Ctrl+End to its ends) when the focused control
    // does not use them itself.
    Connections {
        target: root.Window.window
        function onActiveFocusItemChanged() { root.revealFocusedControl() }
    }
    // Also when the form gets its height: at its first layout, or in a resized window.
    Connections {
        target: scroll.contentItem
        function onHeightChanged() { root.revealFocusedControl() }
    }

    function revealFocusedControl() {
        const item = root.Window.activeFocusItem
        if (!item || scroll.contentItem.height <= 0)
            return
        let inForm = false
        for (let p = item; p; p = p.parent) {
            if (p === cards) {
                inForm = true
                break
            }
        }
        if (inForm)
            revealRange(item.mapToItem(cards, 0, 0).y - 32, item.mapToItem(cards, 0, item.height).y + 16)
    }

    // Scrolls as little as needed for cards' range [top, bottom] to be on screen.
    function revealRange(top, bottom) {
        const flick = scroll.contentItem
        let y = flick.contentY
        if (bottom > y + flick.height)
            y = bottom - flick.height
        if (top < y)
            y = top
        scrollTo(y)
    }

    // Scrolls the form to y, kept between its top and its end.
    function scrollTo(y) {
        const flick = scroll.contentItem
        flick.contentY = Math.max(0, Math.min(y, flick.contentHeight - flick.height))
    }

    // After a deletion from the keyboard, the focus goes to the row that took the deleted
    // one's place (or the last row), else to the preset name field.
    function focusPresetAfterRemoval(index) {
        if (presetList.count > 0) {
            const at = Math.min(index, presetList.count - 1)
            presetList.positionViewAtIndex(at, ListView.Contain)
            const row = presetList.itemAtIndex(at)
            if (row) {
                row.children[0].loadButton.forceActiveFocus(Qt.OtherFocusReason)
                return
            }
        }
        presetNameField.field.forceActiveFocus(Qt.OtherFocusReason)
    }

    // After unlocking: the keyboard starts in the client's name, the form at its top or, when
    // saved presets push the field below the first screen, scrolled just enough to show it.
    function focusFirstField() {
        recipientNameField.field.forceActiveFocus(Qt.OtherFocusReason)
    }

    function scrollBy(pages) {
        const flick = scroll.contentItem
        scrollTo(flick.contentY + pages * (flick.height - 48))
    }

    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_PageDown)
            scrollBy(1)
        else if (event.key === Qt.Key_PageUp)
            scrollBy(-1)
        else if (event.key === Qt.Key_Home && (event.modifiers & Qt.ControlModifier))
            scrollTo(0)
        else if (event.key === Qt.Key_End && (event.modifiers & Qt.ControlModifier))
            scrollTo(scroll.contentItem.contentHeight)
        else
            return
        event.accepted = true
    }

    ScrollView {
        id: scroll
        objectName: "composerScroll"
        anchors.fill: parent
        contentWidth: availableWidth
        clip: true

        // The form never scrolls sideways.
        ScrollBar.horizontal: ScrollBar {
            policy: ScrollBar.AlwaysOff
            visible: false
            Accessible.name: "Defilement horizontal du formulaire"
        }
        ScrollBar.vertical: ScrollBar {
            Accessible.name: "Defilement du formulaire"
            parent: scroll
            x: scroll.width - width
            y: scroll.topPadding
            height: scroll.availableHeight
            policy: ScrollBar.AlwaysOn
            contentItem: Rectangle {
                implicitWidth: 6
                radius: 3
                color: Qt.rgba(1, 1, 1, parent.pressed ? 0.34 : 0.2)
            }
            background: Item {
                implicitWidth: 10
            }
        }

        ColumnLayout {
            id: cards
            width: scroll.availableWidth
            spacing: 18

            Item { Layout.preferredHeight: 24 - cards.spacing }

            // 1
            SectionCard {
                objectName: "presetCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Type de message"
                subtitle: "Choisis une base puis ajuste ton contenu."

                RowLayout {
                    Layout.fillWidth: true
                    spacing: 10
                    Repeater {
                        model: root.controller.presetTiles
                        PresetTileButton {
                            required property var modelData
                            objectName: "presetTile." + modelData.id
                            text: modelData.title
                            summary: modelData.summary
                            isActive: root.controller.activePresetTile === modelData.id
                            onClicked: root.store.applyPresetById(modelData.id)
                        }
                    }
                }
            }

            // 2
            SectionCard {
                objectName: "customPresetCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Presets perso"
                subtitle: "Enregistre tes versions preferees et recharge-les quand tu veux."

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 14

                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 12

                        LabeledTextField {
                            id: presetNameField
                            objectName: "presetNameField"
                            Layout.fillWidth: true
                            Layout.minimumWidth: 10
                            Layout.preferredWidth: 1
                            Layout.alignment: Qt.AlignBottom
                            title: "Nom du preset"
                            text: root.store.customPresetDraftName
                            onEdited: (value) => root.store.customPresetDraftName = value
                        }

                        ColumnLayout {
                            Layout.preferredWidth: 270
                            Layout.maximumWidth: 270
                            Layout.minimumWidth: 270
                            Layout.alignment: Qt.AlignBottom
                            spacing: 10

                            RowLayout {
                                Layout.fillWidth: true
                                spacing: 10
                                ToolbarButton {
                                    objectName: "saveAsNewButton"
                                    Layout.fillWidth: true
                                    Layout.preferredWidth: implicitWidth
                                    Layout.fillHeight: true
                                    text: "Enregistrer comme nouveau"
                                    enabled: root.store.canSaveAsNewCustomPreset
                                    onClicked: root.store.saveAsNewCustomPreset()
                                }
                                ToolbarButton {
                                    objectName: "updateLoadedButton"
                                    Layout.fillWidth: true
                                    Layout.preferredWidth: implicitWidth
                                    Layout.fillHeight: true
                                    text: "Mettre a jour le charge"
                                    primary: true
                                    enabled: root.store.canUpdateActiveCustomPreset
                                    onClicked: root.store.updateActiveCustomPreset()
                                }
                            }
                            MutedText {
                                objectName: "loadedPresetLine"
                                Layout.fillWidth: true
                                text: root.controller.loadedPresetText
                            }
                        }
                    }

                    EmptyPresetStateView {
                        objectName: "emptyPresetState"
                        Layout.fillWidth: true
                        visible: presetList.count === 0
                    }

                    // A list of its own height, scrolling on its own, so that only the rows
                    // on screen exist, however many presets are saved: about four and a half
                    // rows, the cut row showing that there are more.
                    ListView {
                        id: presetList
                        objectName: "customPresetList"
                        readonly property real maximumHeight: 470
                        Layout.fillWidth: true
                        Layout.preferredHeight: Math.min(contentHeight, maximumHeight)
                        visible: count > 0
                        clip: true
                        spacing: 12
                        boundsBehavior: Flickable.StopAtBounds
                        model: root.controller.customPresetModel
                        ScrollBar.vertical: ScrollBar {
                            Accessible.name: "Defilement des presets perso"
                            policy: presetList.contentHeight > presetList.height
                                    ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded
                        }

                        // The focus scope brings a row whose button takes the keyboard focus
                        // on screen.
                        delegate: FocusScope {
                            id: rowScope
                            required property int index
                            required property string presetId
                            required property string name
                            required property string sourceTitle
                            required property string subjectLine
                            required property date updatedAt
                            required property bool isActive

                            width: ListView.view.width - (ListView.view.contentHeight > ListView.view.height ? 14 : 0)
                            implicitHeight: presetRow.implicitHeight
                            height: implicitHeight
                            onActiveFocusChanged: if (activeFocus)
                                ListView.view.positionViewAtIndex(index, ListView.Contain)

                            CustomPresetRow {
                                id: presetRow
                                objectName: "customPresetRow." + rowScope.presetId
                                anchors.fill: parent
                                name: rowScope.name
                                sourceTitle: rowScope.sourceTitle
                                subjectLine: rowScope.subjectLine
                                updatedAt: rowScope.updatedAt
                                isActive: rowScope.isActive
                                onLoad: root.store.loadCustomPresetById(rowScope.presetId)
                                onOverwrite: root.store.overwriteCustomPresetById(rowScope.presetId)
                                onRemove: {
                                    const hadFocus = rowScope.activeFocus
                                    const at = rowScope.index
                                    root.store.deleteCustomPresetById(rowScope.presetId)
                                    if (hadFocus)
                                        Qt.callLater(root.focusPresetAfterRemoval, at)
                                }
                            }
                        }
                    }
                }
            }

            // 3
            SectionCard {
                objectName: "recipientCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Destinataire"
                subtitle: "Objet et coordonnees du client."

                FieldGrid {
                    StoreTextField { id: recipientNameField; store: root.store; fieldName: "recipientName"; title: "Nom du client" }
                    StoreTextField { store: root.store; fieldName: "recipientEmail"; title: "Email du client" }
                    StoreTextField { store: root.store; fieldName: "subject"; title: "Objet du mail" }
                    StoreTextField { store: root.store; fieldName: "preheader"; title: "Preheader" }
                }
            }

            // 4
            SectionCard {
                objectName: "syncCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Synchronisation iPhone"
                subtitle: root.controller.syncSubtitle

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 14

                    // The code field beside the buttons when both fit whole (a full
                    // 29-character code, the buttons on one line), else above them.
                    GridLayout {
                        id: syncRow
                        objectName: "syncRow"
                        readonly property real codeWidth: Math.max(codeMetrics.advanceWidth + 28,
                                                                   syncCodeField.labelWidth)
                        Layout.fillWidth: true
                        columns: width >= codeWidth + columnSpacing + syncActions.implicitWidth ? 2 : 1
                        columnSpacing: 12
                        rowSpacing: 14

                        TextMetrics {
                            id: codeMetrics
                            font: syncCodeField.field.font
                            text: "K7QF-2M9X-PL4D-8RWA-C3NZ-H6TB"
                        }

                        LabeledTextField {
                            id: syncCodeField
                            objectName: "syncCodeField"
                            Layout.fillWidth: true
                            Layout.minimumWidth: syncRow.columns === 2 ? syncRow.codeWidth : 10
                            Layout.alignment: Qt.AlignBottom
                            title: "Code prive de synchronisation"
                            text: root.store.syncCode
                            onEdited: (value) => root.store.syncCode = value
                        }

                        ColumnLayout {
                            id: syncActions
                            objectName: "syncActions"
                            Layout.minimumWidth: implicitWidth
                            Layout.alignment: Qt.AlignBottom | Qt.AlignLeft
                            spacing: 10

                            RowLayout {
                                spacing: 10
                                ToolbarButton {
                                    objectName: "pullButton"
                                    Layout.minimumWidth: implicitWidth
                                    text: "Recuperer depuis l'iPhone"
                                    enabled: !root.store.isSyncing
                                    onClicked: root.store.pullFromWeb()
                                }
                                ToolbarButton {
                                    objectName: "pushButton"
                                    Layout.minimumWidth: implicitWidth
                                    text: "Envoyer vers l'iPhone"
                                    primary: true
                                    enabled: !root.store.isSyncing
                                    onClicked: root.store.pushToWeb()
                                }
                            }
                            LinkText {
                                objectName: "webInterfaceLink"
                                text: "Ouvrir VELINO Mobile"
                                url: root.controller.webInterfaceUrl
                                onActivated: root.controller.openWebInterface()
                            }
                        }
                    }

                    MutedText {
                        objectName: "syncStatusLine"
                        Layout.fillWidth: true
                        text: root.store.syncStatus
                        Accessible.role: Accessible.StatusBar
                        Accessible.name: text
                    }
                }
            }

            // 5
            SectionCard {
                objectName: "messageCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Message"
                subtitle: "Titre, introduction et contenu."

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 14
                    StoreTextField { store: root.store; fieldName: "mailTitle"; title: "Titre principal" }
                    StoreTextEditor { store: root.store; fieldName: "mailIntro"; title: "Phrase d'ouverture"; minHeight: 90 }
                    StoreTextEditor { store: root.store; fieldName: "mailBody"; title: "Message principal"; minHeight: 150 }
                    StoreTextField { store: root.store; fieldName: "highlight"; title: "Ligne de mise en avant" }
                }
            }

            // 6
            SectionCard {
                objectName: "detailsCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Recapitulatif"
                subtitle: "Les details visibles dans le mail."

                FieldGrid {
                    StoreTextField { store: root.store; fieldName: "detailLabel1"; title: "Libelle 1" }
                    StoreTextField { store: root.store; fieldName: "detailValue1"; title: "Valeur 1" }
                    StoreTextField { store: root.store; fieldName: "detailLabel2"; title: "Libelle 2" }
                    StoreTextField { store: root.store; fieldName: "detailValue2"; title: "Valeur 2" }
                    StoreTextField { store: root.store; fieldName: "detailLabel3"; title: "Libelle 3" }
                    StoreTextField { store: root.store; fieldName: "detailValue3"; title: "Valeur 3" }
                    StoreTextField { store: root.store; fieldName: "detailLabel4"; title: "Libelle 4" }
                    StoreTextField { store: root.store; fieldName: "detailValue4"; title: "Valeur 4" }
                }
            }

            // 7
            SectionCard {
                objectName: "actionCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Action"
                subtitle: "Bouton et phrase de fin."

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 14
                    FieldGrid {
                        StoreTextField { store: root.store; fieldName: "ctaLabel"; title: "Texte du bouton" }
                        StoreTextField { store: root.store; fieldName: "ctaURL"; title: "Lien du bouton" }
                    }
                    StoreTextEditor { store: root.store; fieldName: "closingNote"; title: "Phrase de fin"; minHeight: 96 }
                }
            }

            // 8
            SectionCard {
                objectName: "appleMailCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: root.controller.mailSectionTitle
                subtitle: root.controller.mailSectionSubtitle

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 10
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 10
                        StatusChip {
                            objectName: "appleStatusChip"
                            text: root.store.appleConnectionStatusText
                            tint: AppTheme.accentFill
                        }
                        MutedText {
                            objectName: "appleHint"
                            Layout.fillWidth: true
                            text: root.store.appleConnectionHintText
                        }
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        spacing: 10
                        ToolbarButton {
                            objectName: "openDraftButton"
                            text: "Ouvrir le brouillon"
                            primary: true
                            onClicked: root.store.openAppleMailDraft()
                        }
                        Item { Layout.fillWidth: true }
                    }
                }
            }

            // 9
            SectionCard {
                objectName: "identityCard"
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                title: "Identite Korvel"
                subtitle: "Logo, couleurs et signature."

                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 16
                    FieldGrid {
                        StoreTextField { store: root.store; fieldName: "logoURL"; title: "URL du logo email" }
                        StoreColorField { store: root.store; fieldName: "accentPrimary"; title: "Couleur principale" }
                        StoreColorField { store: root.store; fieldName: "accentSecondary"; title: "Couleur secondaire" }
                        StoreTextField { store: root.store; fieldName: "titleFont"; title: "Police titres" }
                        StoreTextField { store: root.store; fieldName: "bodyFont"; title: "Police texte" }
                        StoreTextField { store: root.store; fieldName: "businessName"; title: "Nom de l'atelier" }
                        StoreTextField { store: root.store; fieldName: "businessTagline"; title: "Sous-titre / activite" }
                        StoreTextField { store: root.store; fieldName: "senderName"; title: "Nom expediteur" }
                        StoreTextField { store: root.store; fieldName: "senderRole"; title: "Role" }
                        StoreTextField { store: root.store; fieldName: "senderPhone"; title: "Telephone" }
                        StoreTextField { store: root.store; fieldName: "senderEmail"; title: "Email pro" }
                    }
                    StoreTextEditor { store: root.store; fieldName: "footerNote"; title: "Note de pied de mail"; minHeight: 84 }
                }
            }

            Item { Layout.preferredHeight: 24 - cards.spacing }
        }
    }
}
