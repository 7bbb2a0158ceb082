import QtQuick
import QtTest
import Velino
import VelinoTest

// The real window of the application shell, from its lock screen to very large saved states.
WindowTestCase {
    id: testCase
    name: "MainWindow"

    Component { id: signalSpyComponent; SignalSpy {} }

    // Near misses of the password itself: lock_state_test.
    function test_lockScreenRefusesThenUnlocks_data() {
        return [[" Falcon77!", Qt.Key_Return, "space before"],
                ["falcon77!", "button", "lower case, button"],
                ["Falcon77! ", Qt.Key_Enter, "space after, keypad Enter"]]
                .map(([wrong, submit, tag]) => ({ tag, wrong, submit }))
    }

    function test_lockScreenRefusesThenUnlocks(data) {
        const w = openWindow().window
        compare([w.minimumWidth, w.minimumHeight], [1320, 900 + w.menuBarHeight])
        verify(w.menuBarHeight > 0 && w.width >= 1320 && w.contentItem.height >= 900,
               "content " + w.contentItem.height)
        const [field, error, button] = ["passwordField", "lockError", "unlockButton"]
            .map(name => lockItem(w, name))
        const card = named(w.contentItem, "lockLoader").item, loaders = ["lockLoader", "mainLoader"]
        const locked = (yes) => compare(
            [w.lockState.isUnlocked, ...loaders.map(name => named(w.contentItem, name).active)],
            [!yes, yes, !yes])
        tryVerify(() => field.activeFocus, 3000, "password field focused at start")
        const centre = card.mapToItem(w.contentItem, card.width / 2, card.height / 2)
        verify(Math.abs(centre.x - w.contentItem.width / 2) <= 1
               && Math.abs(centre.y - w.contentItem.height / 2) <= 1, "centred")
        compare([field.placeholderText, button.text, error.text],
                ["Mot de passe", "Entrer dans Velino", ""])
        const [cardHeight, errorY] = [card.height, error.y]
        const submit = (text) => {
            TestSupport.typeText(w, text)
            verify(field.text === text && field.displayText !== text, "masked")
            data.submit === "button" ? mouseClick(button) : TestSupport.keyClick(w, data.submit)
        }
        submit(data.wrong)
        locked(true)
        compare([field.text, error.text], ["", "Mot de passe incorrect."])
        verify(error.visible && field.activeFocus, "shown; the user may retype at once")
        waitForRendering(card)
        compare([card.height, error.y], [cardHeight, errorY],
                "the card does not move when the error appears")
        submit("Falcon77!")
        locked(false)
    }

    function test_editMenuActsOnTheFocusedField() {
        const t = openUnlocked(), edit = t.window.menuBar.menuAt(0)
        const actions = [0, 1, 2, 3].map(i => edit.itemAt(i).action)
        compare([edit.count, ...actions.map(a => [a.objectName, a.text, a.shortcut])],
                [4,
                 ["cutAction", "Couper", StandardKey.Cut],
                 ["copyAction", "Copier", StandardKey.Copy],
                 ["pasteAction", "Coller", StandardKey.Paste],
                 ["selectAllAction", "Tout selectionner", StandardKey.SelectAll]])
        const [cut, copy, paste, selectAll] = actions, subject = focusControl(t, "field.subject")
        selectAll.trigger()
        copy.trigger()
        const preheader = focusControl(t, "field.preheader")
        const pasted = preheader.text + defaultSubject
        paste.trigger()
        compare([preheader.text, t.store.data.preheader], [pasted, pasted])
        focusControl(t, "field.subject")
        selectAll.trigger()
        cut.trigger()
        compare([subject.text, t.store.data.subject], ["", ""])
    }

    function test_newWindowIsIndependentStartsLockedAndIsReleased() {
        const first = openUnlocked().window, count = AppShell.windowCount
        const action = first.menuBar.menuAt(1).itemAt(0).action
        compare([action.objectName, action.text], ["newWindowAction", "Nouvelle fenetre"])
        action.trigger()
        compare(AppShell.windowCount, count + 1)
        const second = AppShell.windowAt(count)
        opened.push(second)
        verify(second !== first && second.controller.store !== first.controller.store,
               "a window with its own store")
        compare([second.lockState.isUnlocked, first.lockState.isUnlocked,
                 named(second.contentItem, "lockLoader").active],
                [false, true, true])
        second.close()
        tryCompare(AppShell, "windowCount", count)
    }

    function test_headerAndCards() {
        const t = openUnlocked(), m = t.main
        compare(["formatChip", "saveChip", "actionChip"].map(name => el(t, name).text),
                ["Pret a envoyer", t.store.saveStatus, "Application prete."])
        compare(["newButton", "standalonePreviewButton", "exportButton", "openInMailButton",
                 "copySubjectButton", "copyTextButton", "copyMailButton", "openDraftButton"]
                .filter(name => !el(t, name).enabled), [], "disabled")
        const inOrder = (names, axis) => compare(
            names.slice().sort((a, b) => el(t, a).mapToItem(m, 0, 0)[axis]
                                         - el(t, b).mapToItem(m, 0, 0)[axis]),
            names)
        inOrder(["presetCard", "customPresetCard", "recipientCard", "syncCard", "messageCard",
                 "detailsCard", "actionCard", "appleMailCard", "identityCard"], "y")
        const subtitle = (card) => named(el(t, card), "sectionSubtitle").text
        compare([subtitle("syncCard"), String(el(t, "webInterfaceLink").url),
                 el(t, "syncStatusLine").text, subtitle("appleMailCard"),
                 el(t, "appleStatusChip").text],
                ["Relie cette app a l'interface privee " + serviceHost + "/velino.html.",
                 "https://127.0.0.1:9/velino.html",
                 t.store.syncStatus,
                 "Connexion native au Thunderbird configure sur cet ordinateur.",
                 "Thunderbird actif"])
        const summaries = [
            ["summary.state", "ETAT", t.store.currentFormatStatus, "Version actuelle"],
            ["summary.recipient", "DESTINATAIRE", "Mme Lambert", "client@example.com"],
            ["summary.details", "BLOC INFOS", "4", "ligne(s) affichee(s)"],
            ["summary.apple", "MOZILLA", "Thunderbird",
             "Ouvre un brouillon HTML natif dans Thunderbird avec le compte configure "
             + "sur cet ordinateur."]]
        for (const [name, ...texts] of summaries)
            compare(["summaryTitle", "summaryValue", "summaryCaption"]
                    .map(part => named(el(t, name), part).text), texts, name)
        inOrder(summaries.map(s => s[0]), "x")
        for (let i = 1; i <= 4; ++i)
            ["detailLabel", "detailValue"].forEach(field => clearField(t, field + i))
        tryCompare(named(el(t, "summary.details"), "summaryValue"), "text", "0", 3000)
    }

    function test_fieldsFlowTwoPerRow() {
        const t = openUnlocked()
        const at = (name) => el(t, "field." + name).mapToItem(t.main, 0, 0)
        const width = (name) => el(t, "field." + name).width
        for (const [left, right] of [["recipientName", "recipientEmail"],
                                     ["subject", "preheader"],
                                     ["detailLabel1", "detailValue1"],
                                     ["detailLabel4", "detailValue4"],
                                     ["ctaLabel", "ctaURL"],
                                     ["logoURL", "accentPrimary"],
                                     ["accentSecondary", "titleFont"],
                                     ["senderRole", "senderPhone"]]) {
            compare(at(left).y, at(right).y, left + " and " + right + " on one row")
            fuzzyCompare(at(right).x - (at(left).x + width(left)), 14, 1)
            fuzzyCompare(width(left), width(right), 1)
        }
        // Eleven identity fields: the last one sits alone in the left column.
        compare(at("senderEmail").x, at("logoURL").x)
        verify(at("senderEmail").y > at("senderRole").y)
        fuzzyCompare(width("senderEmail"), width("logoURL"), 1)
    }

    function test_everyFieldUpdatesTheRecordAndThePreview() {
        const t = openUnlocked(), preview = el(t, "htmlPreview")
        const fields = []
        find(t.main, (i) => {
            if (String(i.objectName).startsWith("field."))
                fields.push(i.objectName.slice(6))
            return false
        })
        compare(fields.slice().sort(), Object.keys(t.store.data).sort())
        const colours = { accentPrimary: "#123456", accentSecondary: "#abcdef" }
        for (const name of fields) {
            // The address shows in the e-mail only when no name is given.
            if (name === "recipientEmail")
                waitForDebounce(t, clearField(t, "recipientName"))
            const control = focusControl(t, "field." + name), loads = preview.loader.loadCount
            const colour = colours[name]
            if (colour)
                control.selectAll()
            const typed = colour || "Zq7", expected = colour || t.store.data[name] + typed
            const before = t.store.generatedHTML
            TestSupport.typeText(t.window, typed)
            compare([t.store.data[name], control.text], [expected, expected],
                    name + " written to the record")
            waitForDebounce(t, before)
            verify(!colour || t.store.generatedHTML.indexOf(colour) >= 0, name + " in the e-mail")
            tryVerify(() => preview.loader.loadCount > loads, 2000, name + ": preview reloaded")
            compare(preview.html, t.store.generatedHTML)
        }
    }

    // The page shows the generated mail; the Edit menu's commands act on it when it has the focus.
    function test_previewShowsTheGeneratedMail() {
        const t = openUnlocked(), preview = waitForPreview(t)
        preview.webView.forceActiveFocus()
        TestSupport.setClipboardText("")
        verify(t.window.editCommands.selectAll() && t.window.editCommands.copy())
        tryVerify(() => TestSupport.clipboardText().indexOf("Votre devis est pret") >= 0, 5000)
        compare(preview.serviceHost, serviceHost)
        tryCompare(preview.webView, "title", t.store.generatedSubject, 10000)
        // Any change the store publishes reloads the page, the same HTML included.
        const html = t.store.generatedHTML, loads = preview.loader.loadCount
        t.store.customPresetDraftName = "Essai"
        tryVerify(() => preview.loader.loadCount === loads + 1, 2000)
        compare(t.store.generatedHTML, html)
    }

    // The row of a saved preset; the list creates it at its next layout.
    function presetRow(t, id) {
        tryVerify(() => find(el(t, "customPresetList"),
                             (i) => i.objectName === "customPresetRow." + id), 2000, id)
        return el(t, "customPresetRow." + id)
    }

    function test_presetsFollowTheStore() {
        const t = openUnlocked(), save = el(t, "saveAsNewButton")
        const update = el(t, "updateLoadedButton")
        const line = el(t, "loadedPresetLine"), empty = el(t, "emptyPresetState")
        const list = el(t, "customPresetList")
        const tiles = ["devis", "pret", "rdv", "relance"].map(id => el(t, "presetTile." + id))
        const active = () => tiles.filter(tile => tile.isActive)
                                  .map(tile => tile.objectName.slice("presetTile.".length))
        const nothingLoaded = () => compare(
            [update.enabled, line.text, empty.visible, list.visible],
            [false, "Aucun preset perso charge pour l'instant.", true, false])
        nothingLoaded()
        compare([tiles.map(tile => tile.text), active(), update.text, save.text, save.enabled,
                 named(empty, "emptyText").text],
                [["Devis", "Appareil pret", "Rendez-vous", "Relance"], ["devis"],
                 "Mettre a jour le charge", "Enregistrer comme nouveau", false,
                 "Enregistre un preset perso pour rappeler un mail entier, ses champs et sa "
                 + "signature en un clic."])
        const nameField = typeInto(t, "presetNameField", "   ")
        compare([t.store.customPresetDraftName, save.enabled], ["   ", false], "blank name")
        nameField.selectAll()
        TestSupport.typeText(t.window, "Ecran iPhone")
        mouseClick(save)
        // The saved preset is the loaded one: its row lights up, no tile does, though its source
        // is "devis".
        const row = () => presetRow(t, t.store.customPresets[0].id)
        compare([t.store.activePreset, active(), row().isActive, row().name,
                 named(row(), "activeChip").text, named(row(), "presetSource").text,
                 update.enabled, line.text, empty.visible, list.visible],
                ["devis", [], true, "Ecran iPhone",
                 "Charge", "Devis · " + defaultSubject,
                 true, "Preset charge : Ecran iPhone", false, true])
        // Choosing a tile clears the saved preset's highlight; loading the preset brings it back.
        mouseClick(el(t, "presetTile.pret"))
        compare([active(), row().isActive], [["pret"], false])
        mouseClick(named(row(), "loadButton"))
        compare([active(), row().isActive, el(t, "field.subject").field.text],
                [[], true, defaultSubject])
        typeInto(t, "field.subject", " (mis a jour)")
        mouseClick(update)
        compare(t.store.customPresets[0].subjectLine, defaultSubject + " (mis a jour)")
        // Deleting asks nothing and brings the empty state back.
        mouseClick(named(row(), "removeButton"))
        compare(t.store.customPresets.length, 0)
        tryVerify(() => empty.visible)
        nothingLoaded()
    }

    // A short code is refused in an alert that hides what is under it; with a whole code, a refused
    // connection is reported in the status line and in an alert, the buttons disabled meanwhile.
    function test_syncRefusalsAndButtons() {
        const t = openUnlocked(), alert = t.window.warningAlert, content = t.window.contentItem
        const push = el(t, "pushButton"), pull = el(t, "pullButton")
        compare([push.text, pull.text, push.primary, pull.primary],
                ["Envoyer vers l'iPhone", "Recuperer depuis l'iPhone", true, false])
        typeInto(t, "syncCodeField", "abc")
        mouseClick(reveal(t, push))
        tryVerify(() => alert.opened, 3000)
        const at = alert.background.mapToItem(content, alert.background.width - 12,
                                              alert.background.height / 2)
        const pixel = () => {
            waitForRendering(content)
            return String(grabImage(content).pixel(at.x, at.y))
        }
        const before = pixel()
        t.main.visible = false
        const after = pixel()
        t.main.visible = true
        compare(after, before, "the alert's surface at " + at.x + "," + at.y)
        const message = "Le code prive doit contenir au moins 16 caracteres."
                        + " Genere-le depuis l'interface iPhone."
        compare(answerAlert(t),
                { title: "Velino", message: message, buttons: 1, button: "OK", modal: true })
        const code = focusControl(t, "syncCodeField")
        compare(code.text, "ABC")
        code.selectAll()
        TestSupport.typeText(t.window, "ABCD-EFGH-IJKL-MNOP")
        reveal(t, push)
        for (const button of [push, pull]) {
            mouseClick(button)
            compare([t.store.isSyncing, push.enabled, pull.enabled], [true, false, false],
                    button.text)
            tryCompare(t.store, "isSyncing", false, 15000)
            compare(answerAlert(t).message, el(t, "syncStatusLine").text)
            verify(push.enabled && pull.enabled, "enabled again after " + button.text)
        }
    }

    function test_exportThroughTheFileDialog() {
        const t = openUnlocked(), w = t.window, dialogs = t.controller.dialogs
        const before = t.store.lastAction
        const file = "votre-devis-korvel-est-pret.html"
        const exported = "HTML exporte vers " + file + "."
        // The dialog opens in the home folder when there is no Documents folder.
        const home = TestSupport.makeTemporaryFolder(), userHome = TestSupport.environment("HOME")
        TestSupport.setEnvironment("HOME", home)
        const openDialog = () => {
            mouseClick(el(t, "exportButton"))
            tryVerify(() => w.exportDialog?.visible, 3000)
        }
        try {
            openDialog()
            compare([w.exportDialog.title, w.exportDialog.currentFolder],
                    ["Exporter le mail HTML", "file://" + home])
            const isName = (i) => i.objectName === "fileNameTextField"
            tryCompare(find(w.contentItem.parent, isName) || find(w.overlay, isName), "text", file)
            w.exportDialog.reject()
            tryVerify(() => !dialogs.isModal)
            compare(t.store.lastAction, before, "Annuler changes nothing")
            openDialog()
            w.exportDialog.accept()
            tryVerify(() => TestSupport.fileExists(home + "/" + file), 3000, file)
            compare([t.store.lastAction, dialogs.isModal], [exported, false])
            // The same name again: the window asks before replacing, once.
            openDialog()
            w.exportDialog.accept()
            tryVerify(() => w.replaceAlert.opened, 3000, "replacement question shown")
            compare(named(w.replaceAlert.contentItem, "alertMessage").text,
                    "Un fichier nomme \"" + file + "\" existe deja. Le remplacer ?")
            mouseClick(named(w.replaceAlert.contentItem, "replaceConfirmButton"))
            tryVerify(() => !dialogs.isModal)
            compare(t.store.lastAction, exported)
        } finally {
            TestSupport.setEnvironment("HOME", userHome)
        }
    }

    function test_presetListCreatesOnlyTheRowsOnScreen() {
        verify(TestSupport.saveStateWithPresets(1000))
        const t = openUnlocked(), list = el(t, "customPresetList")
        // The rows the list has created (delegates), whatever is on screen.
        const created = () => Array.from(list.contentItem.children)
                                   .filter(row => row.presetId !== undefined).length
        compare(list.count, 1000)
        verify(list.height <= list.maximumHeight, "the list keeps its own height")
        verify(created() > 0 && created() <= 15, created() + " rows created for 1000 presets")
        const spies = ["modelReset", "dataChanged", "rowsInserted", "rowsRemoved", "rowsMoved",
                       "layoutChanged"].map(name =>
            createTemporaryObject(signalSpyComponent, testCase,
                                  { target: t.controller.customPresetModel, signalName: name }))
        const counts = (expected) => compare(spies.map(spy => spy.count), expected,
                                             spies.map(spy => spy.signalName).join())
        // Loading a preset: the rows of the old and the new highlight at most.
        reveal(t, list)
        const second = list.itemAtIndex(1)
        mouseClick(named(second, "loadButton"))
        compare(t.store.activeCustomPresetID, second.presetId)
        counts([0, 1, 0, 0, 0, 0])
        // Overwriting it moves its row to the top; deleting it removes that row.
        mouseClick(named(list.itemAtIndex(1), "overwriteButton"))
        tryVerify(() => list.itemAtIndex(0)?.presetId === t.store.activeCustomPresetID, 2000,
                  "overwritten row on top")
        mouseClick(named(list.itemAtIndex(0), "removeButton"))
        tryCompare(list, "count", 999)
        counts([0, 2, 0, 1, 1, 0])
        // Scrolled to the end: rows are made for the new place, not for the whole list.
        list.positionViewAtEnd()
        waitForRendering(list)
        verify(list.itemAtIndex(998) && created() <= 15, created() + " rows after scrolling")
    }

    function test_veryLongTextIsSummarisedAndKeptWhole_data() {
        return [["message body, one 4 MB line", "mailBody", 4000000, 0],
                ["message body, 4 MB in short lines", "mailBody", 4000000, 26],
                ["single-line field", "senderEmail", 150000, 0],
                ["colour field", "accentPrimary", 150000, 0]]
                .map(([tag, field, length, lineLength]) => ({ tag, field, length, lineLength }))
    }

    function test_veryLongTextIsSummarisedAndKeptWhole(data) {
        verify(TestSupport.saveStateWithLongField(data.field, data.length, data.lineLength))
        const expected = TestSupport.longText(data.length, data.lineLength)
        const t = openUnlocked(), wrapper = el(t, "field." + data.field), editor = control(wrapper)
        const summary = named(wrapper, "longTextSummary")
        const button = named(wrapper, "editAnywayButton")
        verify(summary.visible
               && /^Texte tres long \(.* [MK]o\) : ecran batterie/.test(summary.text),
               summary.text)
        compare([editor.text, editor.visible], ["", false], "nothing of the long text is laid out")
        compare([button.text, button.Accessible.name],
                ["Modifier quand meme", "Modifier quand meme : " + wrapper.title])
        // Typing elsewhere regenerates and saves with the long text whole; the preview shows it
        // cut, and says so.
        const before = t.store.generatedHTML
        typeInto(t, "field.recipientName", "Z")
        waitForDebounce(t, before)
        verify(t.store.data[data.field] === expected && summary.visible,
               "record unchanged, still summarised")
        const preview = el(t, "htmlPreview")
        verify(preview.html.length < 100000, "preview of " + preview.html.length + " characters")
        verify(preview.html.indexOf(t.store.data.recipientName) >= 0
               && el(t, "shortenedPreviewNote").visible)
        if (data.length > 1000000)
            return // laying out several megabytes is what the summary avoids
        // From the keyboard: the button takes the focus, Return hands over the text.
        button.forceActiveFocus()
        tryVerify(() => button.activeFocus)
        TestSupport.keyClick(t.window, Qt.Key_Return)
        tryVerify(() => editor.visible && editor.activeFocus, 5000, "editor shown and focused")
        compare([editor.text.length, summary.visible], [data.length, false])
        verify(t.store.data[data.field] === expected, "record unchanged after opening the editor")
    }
}
