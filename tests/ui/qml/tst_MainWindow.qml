import QtQuick
import QtTest
import Velino
import VelinoTest

// The real window of the application shell, from its lock screen to very large saved states.
WindowTestCase {
    name: "MainWindow"

    // Near misses of the password itself: lock_state_test.
    function test_lockScreenRefusesThenUnlocks_data() {
        return [{ tag: "space before", wrong: " Falcon77!", submit: Qt.Key_Return },
                { tag: "lower case, button", wrong: "falcon77!", submit: "button" },
                { tag: "space after, keypad Enter", wrong: "Falcon77! ", submit: Qt.Key_Enter }]
    }

    function test_lockScreenRefusesThenUnlocks(data) {
        const w = openWindow().window
        const [field, error] = ["passwordField", "lockError"].map(name => lockItem(w, name))
        const locked = (yes) => compare([w.lockState.isUnlocked, ...["lockLoader", "mainLoader"]
            .map(name => named(w.contentItem, name).active)], [!yes, yes, !yes])
        submitPassword(w, data.wrong, data.submit)
        locked(true)
        compare([field.text, error.text], ["", "Mot de passe incorrect."])
        verify(error.visible && field.activeFocus, "shown; the user may retype at once")
        submitPassword(w, "Falcon77!", data.submit)
        locked(false)
    }

    function test_editMenuActsOnTheFocusedField() {
        const t = openUnlocked(), edit = t.window.menuBar.menuAt(0)
        const [cut, copy, paste, selectAll] = [0, 1, 2, 3].map(i => edit.itemAt(i).action)
        const subject = focusControl(t, "field.subject")
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
        first.menuBar.menuAt(1).itemAt(0).action.trigger()
        compare(AppShell.windowCount, count + 1)
        const second = AppShell.windowAt(count)
        opened.push(second)
        verify(second !== first && second.controller.store !== first.controller.store,
               "a window with its own store")
        compare([second.lockState.isUnlocked, named(second.contentItem, "lockLoader").active,
                 first.lockState.isUnlocked], [false, true, true])
        second.close()
        tryCompare(AppShell, "windowCount", count)
    }

    // The texts the window computes: the service's address, the count of detail lines shown.
    function test_cardsComputedTexts() {
        const t = openUnlocked(), details = named(el(t, "summary.details"), "summaryValue")
        compare([named(el(t, "syncCard"), "sectionSubtitle").text,
                 String(el(t, "webInterfaceLink").url), details.text],
                ["Relie cette app a l'interface privee " + serviceHost + "/velino.html.",
                 "https://127.0.0.1:9/velino.html", "4"])
        for (let i = 1; i <= 4; ++i)
            ["detailLabel", "detailValue"].forEach(field => clearField(t, field + i))
        tryCompare(details, "text", "0", 3000)
    }

    function test_everyFieldUpdatesTheRecordAndThePreview() {
        const t = openUnlocked(), preview = el(t, "htmlPreview")
        const fields = findAll(t.main, (i) => String(i.objectName).startsWith("field."))
                           .map(i => i.objectName.slice(6))
        compare(fields.slice().sort(), Object.keys(t.store.data).sort())
        const colours = { accentPrimary: "#123456", accentSecondary: "#abcdef" }
        for (const name of fields) {
            // The address shows in the e-mail only when no name is given.
            if (name === "recipientEmail")
                regenerated(t, () => clearField(t, "recipientName"))
            const colour = colours[name], loads = preview.loader.loadCount
            const typed = colour || "Zq7", expected = colour || t.store.data[name] + typed
            const control = regenerated(t, () => typeInto(t, "field." + name, typed, !!colour))
            compare([t.store.data[name], control.text], [expected, expected],
                    name + " written to the record")
            verify(!colour || t.store.generatedHTML.indexOf(colour) >= 0, name + " in the e-mail")
            tryVerify(() => preview.loader.loadCount > loads, 2000, name + ": preview reloaded")
            compare(preview.html, t.store.generatedHTML)
        }
    }

    // The page shows the generated mail; the Edit menu's commands act on it when it has the focus.
    function test_previewShowsTheGeneratedMail() {
        const t = openUnlocked(), preview = el(t, "htmlPreview")
        preview.webView.forceActiveFocus()
        TestSupport.setClipboardText("")
        verify(t.window.editCommands.selectAll() && t.window.editCommands.copy())
        tryVerify(() => TestSupport.clipboardText().indexOf("Votre devis est pret") >= 0, 5000)
        compare(preview.serviceHost, serviceHost)
        tryCompare(preview.webView, "title", t.store.generatedSubject, 10000)
    }

    function test_presetsFollowTheStore() {
        const t = openUnlocked(), [save, update, line, empty, list] = [
            "saveAsNewButton", "updateLoadedButton", "loadedPresetLine", "emptyPresetState",
            "customPresetList"].map(name => el(t, name))
        const tiles = ["devis", "pret", "rdv", "relance"].map(id => el(t, "presetTile." + id))
        const active = () => tiles.filter(tile => tile.isActive)
                                  .map(tile => tile.objectName.slice("presetTile.".length))
        const nothingLoaded = () => compare(
            [update.enabled, line.text, empty.visible, list.visible],
            [false, "Aucun preset perso charge pour l'instant.", true, false])
        nothingLoaded()
        compare([active(), save.enabled], [["devis"], false])
        typeInto(t, "presetNameField", "   ")
        compare([t.store.customPresetDraftName, save.enabled], ["   ", false], "blank name")
        typeInto(t, "presetNameField", "Ecran iPhone", true)
        mouseClick(save)
        // The saved preset is the loaded one: its row lights up, no tile does, though its source
        // is "devis".
        const row = () => presetRow(t, t.store.customPresets[0].id)
        compare([t.store.activePreset, active(), row().isActive, row().name,
                 named(row(), "activeChip").visible, named(row(), "presetSource").text,
                 update.enabled, line.text, empty.visible, list.visible],
                ["devis", [], true, "Ecran iPhone", true, "Devis · " + defaultSubject,
                 true, "Preset charge : Ecran iPhone", false, true])
        // Choosing a tile clears the saved preset's highlight; loading the preset brings it back.
        mouseClick(el(t, "presetTile.pret"))
        compare([active(), row().isActive, named(row(), "activeChip").visible],
                [["pret"], false, false])
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

    // A short code is refused in an alert; with a whole code, a refused connection is reported in
    // the status line and in an alert, the buttons disabled meanwhile.
    function test_syncRefusalsAndButtons() {
        const t = openUnlocked(), push = el(t, "pushButton"), pull = el(t, "pullButton")
        typeInto(t, "syncCodeField", "abc")
        mouseClick(reveal(t, push))
        compare(answerAlert(t), "Le code prive doit contenir au moins 16 caracteres."
                                + " Genere-le depuis l'interface iPhone.")
        compare(el(t, "syncCodeField").field.text, "ABC")
        typeInto(t, "syncCodeField", "ABCD-EFGH-IJKL-MNOP", true)
        reveal(t, push)
        for (const button of [push, pull]) {
            mouseClick(button)
            compare([t.store.isSyncing, push.enabled, pull.enabled], [true, false, false],
                    button.text)
            tryCompare(t.store, "isSyncing", false, 15000)
            compare(answerAlert(t), el(t, "syncStatusLine").text)
            verify(push.enabled && pull.enabled, "enabled again after " + button.text)
        }
    }

    function test_exportThroughTheFileDialog() {
        const t = openUnlocked(), w = t.window, dialogs = t.controller.dialogs
        const before = t.store.lastAction, file = "votre-devis-korvel-est-pret.html"
        const exported = "HTML exporte vers " + file + "."
        // The dialog opens in the home folder when there is no Documents folder.
        const home = TestSupport.makeTemporaryFolder(), userHome = TestSupport.environment("HOME")
        TestSupport.setEnvironment("HOME", home)
        // Opens the dialog, types `typed` into its name field if given, then answers `how`.
        const answer = (how, typed) => {
            mouseClick(el(t, "exportButton"))
            tryVerify(() => w.exportDialog?.visible, 3000)
            compare(w.exportDialog.currentFolder, "file://" + home)
            if (typed) {
                // Qt Quick's own dialog; the one before may still be going.
                const name = findAll(w.contentItem.parent,
                                     (i) => i.objectName === "fileNameTextField").pop()
                name.forceActiveFocus()
                name.text = typed
            }
            w.exportDialog[how]()
        }
        try {
            answer("reject")
            tryVerify(() => !dialogs.isModal)
            compare(t.store.lastAction, before, "Annuler changes nothing")
            // A typed name gets its extension.
            const typed = "Devis \u00E9t\u00E9 #2" // the test's keys are ASCII only
            answer("accept", typed)
            tryCompare(t.store, "lastAction", "HTML exporte vers " + typed + ".html.", 3000)
            verify(TestSupport.fileExists(home + "/" + typed + ".html"))
            answer("accept")
            tryVerify(() => TestSupport.fileExists(home + "/" + file), 3000, file)
            compare([t.store.lastAction, dialogs.isModal], [exported, false])
            // The same name again: the window asks before replacing, once.
            answer("accept")
            compare(answerAlert(t, w.replaceAlert, "replaceConfirmButton"),
                    "Un fichier nomme \"" + file + "\" existe deja. Le remplacer ?")
            compare(t.store.lastAction, exported)
        } finally {
            TestSupport.setEnvironment("HOME", userHome)
        }
    }

    function test_presetListCreatesOnlyTheRowsOnScreen() {
        verify(TestSupport.saveStateWithPresets(1000))
        const t = openUnlocked(), list = el(t, "customPresetList")
        verify(onScreen(t, t.window.activeFocusItem), "the focused client's name is on screen")
        // The rows the list has created (delegates), whatever is on screen.
        const created = () => findAll(list.contentItem, (i) => i.presetId !== undefined).length
        compare(list.count, 1000)
        verify(list.height <= list.maximumHeight, "the list keeps its own height")
        verify(created() > 0 && created() <= 15, created() + " rows created for 1000 presets")
        const spies = ["modelReset", "dataChanged", "rowsInserted", "rowsRemoved", "rowsMoved",
                       "layoutChanged"].map(signalName => Object.assign(
            createTemporaryQmlObject("import QtTest; SignalSpy {}", t.main),
            { target: t.controller.customPresetModel, signalName }))
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
        const expected = TestSupport.saveStateWithLongField(data.field, data.length,
                                                            data.lineLength)
        compare(expected.length, data.length, "saved")
        const t = openUnlocked(), wrapper = el(t, "field." + data.field)
        const editor = wrapper.field ?? wrapper.editor
        const [summary, button] = ["longTextSummary", "editAnywayButton"]
            .map(name => named(wrapper, name))
        verify(summary.visible
               && /^Texte tres long \(.* [MK]o\) : ecran batterie/.test(summary.text),
               summary.text)
        compare([editor.text, editor.visible], ["", false], "nothing of the long text is laid out")
        compare(button.Accessible.name, "Modifier quand meme : " + wrapper.title)
        // Typing elsewhere regenerates and saves with the long text whole; the preview shows it
        // cut, and says so.
        regenerated(t, () => typeInto(t, "field.recipientName", "Z"))
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
