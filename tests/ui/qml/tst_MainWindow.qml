import QtQuick
import QtTest
import Velino
import VelinoTest

// The real window of the application shell with its real store, its settings in a
// temporary folder (XDG_CONFIG_HOME, set by the test program) wiped before each test.
// Keys are sent to that window, not to the test's own.
Item {
    id: scene
    width: 200
    height: 200

    // Answers the store's warnings of one window the way a user would: a click on "OK"
    // once the alert is on screen. The texts answered are kept in order.
    Component {
        id: alertAnswererComponent
        Connections {
            id: answerer
            property var window
            property var answered: []
            // What each alert showed when it was answered.
            property var shown: []
            property int unanswered: 0

            function onAlertChanged() {
                if (target.alertVisible)
                    clickTimer.restart()
            }

            property Timer clickTimer: Timer {
                interval: 30
                onTriggered: {
                    const dialogs = answerer.target
                    if (!dialogs.alertVisible)
                        return
                    const popup = answerer.window.warningAlert
                    if (!popup.opened) {
                        restart()
                        return
                    }
                    const text = dialogs.alertText
                    const count = dialogs.pendingAlertCount
                    const ok = testCase.driver.findNamed(popup.contentItem, "alertOkButton")
                    answerer.shown = answerer.shown.concat([{
                        title: testCase.driver.findNamed(popup.contentItem, "alertTitle").text,
                        message: testCase.driver.findNamed(popup.contentItem, "alertMessage").text,
                        buttons: ok.parent.children.length, button: ok.text,
                        modal: popup.modal && dialogs.isModal }])
                    testCase.mouseClick(ok)
                    if (dialogs.pendingAlertCount === count) {
                        // The click missed: answer anyway so that the test does not hang.
                        answerer.unanswered += 1
                        dialogs.dismissAlert()
                    }
                    answerer.answered = answerer.answered.concat([text])
                }
            }
        }
    }

    // When the store published each new HTML, in milliseconds since the epoch.
    Component {
        id: htmlClockComponent
        Connections {
            property var times: []
            function onGeneratedHTMLChanged() { times = times.concat([Date.now()]) }
        }
    }

    TestCase {
        id: testCase
        name: "MainWindow"
        when: windowShown

        // A closed local port: a push fails at once, and nothing leaves the machine.
        readonly property string serviceHost: "127.0.0.1:9"
        readonly property string defaultSubject: "Votre devis Korvel est pret"

        property var opened: []

        function initTestCase() {
            TestSupport.setEnvironment("VELINO_SERVICE_HOST", serviceHost)
        }

        function cleanupTestCase() {
            TestSupport.unsetEnvironment("VELINO_SERVICE_HOST")
        }

        function init() {
            verify(TestSupport.resetSettings(), "settings wiped")
        }

        function cleanup() {
            for (const w of opened) {
                if (w)
                    w.close()
            }
            opened = []
            wait(0)
        }

        property WindowDriver driver: WindowDriver {}

        function named(root, name) {
            const item = driver.findNamed(root, name)
            verify(item, "item " + name)
            return item
        }

        // The items of the main content by objectName, found in one walk of the tree; an
        // item created or destroyed since (a saved-preset row) is looked up again.
        function el(t, name) {
            if (!t.index) {
                t.index = {}
                const walk = (item) => {
                    if (item.objectName && t.index[item.objectName] === undefined)
                        t.index[item.objectName] = item
                    for (let i = 0; i < item.children.length; ++i)
                        walk(item.children[i])
                }
                walk(t.main)
            }
            let item = t.index[name]
            if (!item || item.objectName !== name || !item.parent) {
                item = named(t.main, name)
                t.index[name] = item
            }
            return item
        }

        function openWindow() {
            const w = AppShell.openWindow()
            verify(w)
            opened.push(w)
            w.requestActivate()
            tryVerify(() => w.visible && w.active, 5000)
            const alerts = createTemporaryObject(alertAnswererComponent, testCase,
                                                 { target: w.controller.dialogs, window: w })
            return { window: w, alerts: alerts }
        }

        function lockItem(w, name) {
            return named(driver.findNamed(w.contentItem, "lockLoader").item, name)
        }

        function passwordField(w) {
            return lockItem(w, "passwordField")
        }

        function unlock(t) {
            const field = passwordField(t.window)
            tryVerify(() => field.activeFocus, 3000, "password field focused")
            TestSupport.typeText(t.window, "Falcon77!")
            TestSupport.keyClick(t.window, Qt.Key_Return)
            tryVerify(() => t.window.lockState.isUnlocked)
            const main = driver.findNamed(t.window.contentItem, "mainLoader").item
            verify(main)
            compare(main.objectName, "mainContent")
            t.main = main
            t.controller = t.window.controller
            t.store = t.window.controller.store
            return t
        }

        function openUnlocked() {
            return unlock(openWindow())
        }

        // The text control of `name` (a form field's: "field." + its name), focused, with the
        // cursor at its end.
        function focusControl(t, name) {
            const wrapper = el(t, name)
            const control = wrapper.field !== undefined ? wrapper.field : wrapper.editor
            verify(control, "control of " + name)
            control.forceActiveFocus()
            tryVerify(() => control.activeFocus, 2000, name + " focused")
            control.cursorPosition = control.length
            return control
        }

        function clearField(t, fieldName) {
            const control = focusControl(t, "field." + fieldName)
            control.selectAll()
            TestSupport.keyClick(t.window, Qt.Key_Backspace)
            compare(control.text, "")
            return control
        }

        function typeInto(t, name, text) {
            const control = focusControl(t, name)
            TestSupport.typeText(t.window, text)
            return control
        }

        // Scrolls the form column so that `item` is on screen, where a click can reach it.
        function reveal(t, item) {
            const flick = t.main.composerPane.scrollView.contentItem
            const y = item.mapToItem(flick.contentItem, 0, 0).y
            flick.contentY = Math.max(0, Math.min(y - 120, flick.contentHeight - flick.height))
            waitForRendering(t.main)
            const top = item.mapToItem(t.main, 0, 0).y
            verify(top >= 0 && top + item.height <= t.main.height, item.objectName + " on screen")
            return item
        }

        function waitForDebounce(t, before) {
            tryVerify(() => t.store.generatedHTML !== before, 3000, "regenerated after the debounce")
        }

        // ---- Lock screen ---------------------------------------------------------------

        function test_windowStartsLockedAndRefusesWrongPasswords() {
            const w = openWindow().window
            compare(w.minimumWidth, 1320)
            verify(w.menuBarHeight > 0)
            compare(w.minimumHeight, 900 + w.menuBarHeight)
            verify(w.width >= 1320 && w.contentItem.height >= 900, "content " + w.contentItem.height)
            compare(w.lockState.isUnlocked, false)
            verify(driver.findNamed(w.contentItem, "lockLoader").active)
            verify(!driver.findNamed(w.contentItem, "mainLoader").active)
            const field = passwordField(w)
            const error = lockItem(w, "lockError")
            const card = driver.findNamed(w.contentItem, "lockLoader").item
            tryVerify(() => field.activeFocus, 3000, "password field focused at start")
            const centre = card.mapToItem(w.contentItem, card.width / 2, card.height / 2)
            fuzzyCompare(centre.x, w.contentItem.width / 2, 1)
            fuzzyCompare(centre.y, w.contentItem.height / 2, 1)
            compare(field.echoMode, TextInput.Password)
            compare(field.placeholderText, "Mot de passe")
            compare(error.text, "")
            verify(error.height >= 18, "the error line is laid out while empty")
            const cardHeight = card.height
            const errorY = error.y
            for (const attempt of [" Falcon77!", "falcon77!", "Falcon77! ", "Falcon77", ""]) {
                TestSupport.typeText(w, attempt)
                compare(field.text, attempt)
                compare(w.lockState.password, attempt, "the field writes the lock state")
                if (attempt.length > 0)
                    verify(field.displayText !== attempt, "masked")
                TestSupport.keyClick(w, Qt.Key_Return)
                compare(w.lockState.isUnlocked, false, "refused: '" + attempt + "'")
                compare(field.text, "", "field emptied after '" + attempt + "'")
                compare(error.text, "Mot de passe incorrect.")
                verify(error.visible)
                verify(field.activeFocus, "the user may retype at once")
                verify(driver.findNamed(w.contentItem, "lockLoader").active)
                verify(!driver.findNamed(w.contentItem, "mainLoader").active)
            }
            // The card does not move when the error appears.
            waitForRendering(card)
            compare(card.height, cardHeight)
            compare(error.y, errorY)
            // The button refuses the same way.
            TestSupport.typeText(w, "falcon77!")
            mouseClick(lockItem(w, "unlockButton"))
            compare(w.lockState.isUnlocked, false)
            compare(field.text, "")
            compare(error.text, "Mot de passe incorrect.")
        }

        function test_unlocksAfterARefusal_data() {
            return [{ tag: "Return" }, { tag: "button" }, { tag: "keypad Enter" }]
        }

        function test_unlocksAfterARefusal(data) {
            const w = openWindow().window
            tryVerify(() => passwordField(w).activeFocus, 3000)
            TestSupport.typeText(w, "falcon77!")
            TestSupport.keyClick(w, Qt.Key_Return)
            compare(w.lockState.errorText, "Mot de passe incorrect.")
            TestSupport.typeText(w, "Falcon77!")
            if (data.tag === "button") {
                const button = lockItem(w, "unlockButton")
                compare(button.text, "Entrer dans Velino")
                mouseClick(button)
            } else {
                TestSupport.keyClick(w, data.tag === "Return" ? Qt.Key_Return : Qt.Key_Enter)
            }
            compare(w.lockState.isUnlocked, true)
            compare(w.lockState.errorText, "")
            compare(w.lockState.password, "")
            verify(driver.findNamed(w.contentItem, "mainLoader").active)
            verify(!driver.findNamed(w.contentItem, "lockLoader").active)
            verify(named(driver.findNamed(w.contentItem, "mainLoader").item, "headerBand"))
        }

        // ---- Windows and menus ---------------------------------------------------------

        function findAction(menuBar, name) {
            for (let m = 0; m < menuBar.count; ++m) {
                const menu = menuBar.menuAt(m)
                for (let i = 0; i < menu.count; ++i) {
                    const item = menu.itemAt(i)
                    if (item && item.action && item.action.objectName === name)
                        return item.action
                }
            }
            return null
        }

        function test_editMenuActsOnTheFocusedField() {
            const t = openUnlocked()
            const w = t.window
            const expected = [
                ["cutAction", "Couper", StandardKey.Cut],
                ["copyAction", "Copier", StandardKey.Copy],
                ["pasteAction", "Coller", StandardKey.Paste],
                ["selectAllAction", "Tout selectionner", StandardKey.SelectAll],
            ]
            const edit = w.menuBar.menuAt(0)
            compare(edit.count, 4)
            for (let i = 0; i < expected.length; ++i) {
                const action = edit.itemAt(i).action
                compare(action.objectName, expected[i][0])
                compare(action.text, expected[i][1])
                compare(action.shortcut, expected[i][2])
            }

            const trigger = (name) => findAction(w.menuBar, name).trigger()
            const subject = focusControl(t, "field.subject")
            trigger("selectAllAction")
            compare(subject.selectedText, defaultSubject)
            trigger("copyAction")
            const preheader = focusControl(t, "field.preheader")
            const before = preheader.text
            compare(preheader.selectedText, "")
            trigger("pasteAction")
            compare(preheader.text, before + defaultSubject)
            compare(t.store.data.preheader, before + defaultSubject)
            focusControl(t, "field.subject")
            trigger("selectAllAction")
            trigger("cutAction")
            compare(subject.text, "")
            compare(t.store.data.subject, "")
        }

        function test_newWindowIsIndependentAndStartsLocked() {
            const first = openWindow().window
            first.lockState.password = "Falcon77!"
            first.lockState.unlock()
            verify(first.lockState.isUnlocked)
            const count = AppShell.windowCount
            const action = findAction(first.menuBar, "newWindowAction")
            compare(action.text, "Nouvelle fenetre")
            action.trigger()
            compare(AppShell.windowCount, count + 1)
            const second = AppShell.windowAt(count)
            verify(second)
            opened.push(second)
            verify(second !== first)
            verify(second.lockState !== first.lockState)
            verify(second.controller.store !== first.controller.store)
            verify(!second.lockState.isUnlocked)
            verify(first.lockState.isUnlocked)
            verify(driver.findNamed(second.contentItem, "lockLoader").active)
        }

        function test_closedWindowsAreReleased() {
            const count = AppShell.windowCount
            const w = openWindow().window
            compare(AppShell.windowCount, count + 1)
            w.close()
            tryCompare(AppShell, "windowCount", count)
        }

        // ---- Layout and texts ----------------------------------------------------------

        function test_headerAndCards() {
            const t = openUnlocked()
            const m = t.main
            for (const [name, property] of [["formatChip", "currentFormatStatus"], ["saveChip", "saveStatus"],
                                            ["actionChip", "lastAction"]]) {
                compare(el(t, name).text, t.store[property], name)
                verify(el(t, name).text.length > 0)
            }
            compare(el(t, "actionChip").text, "Application prete.")
            for (const name of ["newButton", "standalonePreviewButton", "exportButton", "openInMailButton",
                                "copySubjectButton", "copyTextButton", "copyMailButton", "openDraftButton"])
                verify(el(t, name).enabled, name + " enabled")

            // The cards of the form column, in this order.
            let previousY = -1
            for (const name of ["presetCard", "customPresetCard", "recipientCard", "syncCard", "messageCard",
                                "detailsCard", "actionCard", "appleMailCard", "identityCard"]) {
                const y = el(t, name).mapToItem(m, 0, 0).y
                verify(y > previousY, name + " comes after the card before it")
                previousY = y
            }
            // The service host shows in the sync card.
            compare(named(el(t, "syncCard"), "sectionSubtitle").text,
                    "Relie cette app a l'interface privee 127.0.0.1:9/velino.html.")
            compare(String(el(t, "webInterfaceLink").url), "https://127.0.0.1:9/velino.html")
            compare(el(t, "syncStatusLine").text, t.store.syncStatus)
            // The mail card names the mail client of Linux.
            compare(named(el(t, "appleMailCard"), "sectionSubtitle").text,
                    "Connexion native au Thunderbird configure sur cet ordinateur.")
            compare(el(t, "appleStatusChip").text, "Thunderbird actif")

            const summaries = [["summary.state", "ETAT", t.store.currentFormatStatus, "Version actuelle"],
                               ["summary.recipient", "DESTINATAIRE", "Mme Lambert", "client@example.com"],
                               ["summary.details", "BLOC INFOS", "4", "ligne(s) affichee(s)"],
                               ["summary.apple", "MOZILLA", "Thunderbird",
                                "Ouvre un brouillon HTML natif dans Thunderbird avec le compte configure sur cet ordinateur."]]
            let previousX = -1
            for (const [name, title, value, caption] of summaries) {
                const card = el(t, name)
                compare(named(card, "summaryTitle").text, title)
                compare(named(card, "summaryValue").text, value)
                compare(named(card, "summaryCaption").text, caption)
                const x = card.mapToItem(m, 0, 0).x
                verify(x > previousX)
                previousX = x
            }

            // Both panes at least at their minimum widths in the minimum window.
            verify(m.composerPane.width >= 540, "form column " + m.composerPane.width)
            verify(m.previewPane.width >= 620, "preview column " + m.previewPane.width)
            verify(m.composerPane.x + m.composerPane.width <= m.previewPane.x)
        }

        function test_fieldsFlowTwoPerRow() {
            const t = openUnlocked()
            const pairs = [["recipientName", "recipientEmail"], ["subject", "preheader"],
                           ["detailLabel1", "detailValue1"], ["detailLabel4", "detailValue4"],
                           ["ctaLabel", "ctaURL"], ["logoURL", "accentPrimary"],
                           ["accentSecondary", "titleFont"], ["senderRole", "senderPhone"]]
            for (const [left, right] of pairs) {
                const a = el(t, "field." + left)
                const b = el(t, "field." + right)
                const pa = a.mapToItem(t.main, 0, 0)
                const pb = b.mapToItem(t.main, 0, 0)
                compare(pa.y, pb.y, left + " and " + right + " on one row")
                verify(pb.x > pa.x + a.width, right + " right of " + left)
                fuzzyCompare(a.width, b.width, 1)
                fuzzyCompare(pb.x - (pa.x + a.width), 14, 1)
            }
            // Eleven identity fields: the last one sits alone in the left column.
            const logo = el(t, "field.logoURL").mapToItem(t.main, 0, 0)
            const role = el(t, "field.senderRole").mapToItem(t.main, 0, 0)
            const email = el(t, "field.senderEmail")
            const last = email.mapToItem(t.main, 0, 0)
            compare(last.x, logo.x)
            verify(last.y > role.y)
            fuzzyCompare(email.width, el(t, "field.logoURL").width, 1)
        }

        // ---- Editing -------------------------------------------------------------------

        function test_everyFieldUpdatesTheRecordAndThePreview() {
            const t = openUnlocked()
            const preview = el(t, "htmlPreview")
            const fields = [
                "recipientName", "recipientEmail", "subject", "preheader",
                "mailTitle", "mailIntro", "mailBody", "highlight",
                "detailLabel1", "detailValue1", "detailLabel2", "detailValue2",
                "detailLabel3", "detailValue3", "detailLabel4", "detailValue4",
                "ctaLabel", "ctaURL", "closingNote",
                "logoURL", "accentPrimary", "accentSecondary", "titleFont", "bodyFont",
                "businessName", "businessTagline", "senderName", "senderRole",
                "senderPhone", "senderEmail", "footerNote",
            ]
            compare(fields.length, 31)
            // Exactly one control per field of the record.
            for (const name of fields)
                el(t, "field." + name)
            let controls = 0
            const count = (item) => {
                if (String(item.objectName).startsWith("field."))
                    ++controls
                for (let i = 0; i < item.children.length; ++i)
                    count(item.children[i])
            }
            count(t.main)
            compare(controls, 31)

            const colours = { accentPrimary: "#123456", accentSecondary: "#abcdef" }
            const clock = createTemporaryObject(htmlClockComponent, testCase, { target: t.store })
            for (const name of fields) {
                if (name === "recipientEmail") {
                    // The address is shown in the e-mail only when no name is given.
                    const before = t.store.generatedHTML
                    clearField(t, "recipientName")
                    waitForDebounce(t, before)
                }
                const control = focusControl(t, "field." + name)
                const loads = preview.loader.loadCount
                let typed
                if (colours[name] !== undefined) {
                    control.selectAll()
                    typed = colours[name]
                } else {
                    typed = "Zq7"
                }
                const expected = colours[name] !== undefined ? typed : t.store.data[name] + typed
                // All but the last key, then the last one alone: the debounce counts from it.
                TestSupport.typeText(t.window, typed.slice(0, -1))
                const before = t.store.generatedHTML
                clock.times = []
                const lastKey = Date.now()
                TestSupport.typeText(t.window, typed.slice(-1))
                compare(t.store.data[name], expected, name + " written to the record")
                compare(control.text, expected)
                waitForDebounce(t, before)
                const regeneratedAfter = clock.times[clock.times.length - 1] - lastKey
                // A coarse timer may fire up to 5 % early.
                verify(regeneratedAfter >= 170, name + ": regenerated " + regeneratedAfter + " ms after the last key")
                if (colours[name] !== undefined)
                    verify(t.store.generatedHTML.indexOf(colours[name]) >= 0, name + " in the e-mail")
                tryVerify(() => preview.loader.loadCount > loads, 2000, name + ": preview reloaded")
                compare(preview.html, t.store.generatedHTML)
            }
        }

        function test_previewShowsTheGeneratedMail() {
            const t = openUnlocked()
            const preview = el(t, "htmlPreview")
            compare(preview.html, t.store.generatedHTML)
            compare(preview.serviceHost, serviceHost)
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000)
            tryCompare(preview.webView, "title", t.store.generatedSubject, 10000)
            typeInto(t, "field.subject", " demain")
            tryCompare(preview.webView, "title", defaultSubject + " demain", 10000)
            // Any change the store publishes reloads the page, the same HTML included.
            const html = t.store.generatedHTML
            const loads = preview.loader.loadCount
            t.store.customPresetDraftName = "Essai"
            tryVerify(() => preview.loader.loadCount === loads + 1, 2000)
            compare(t.store.generatedHTML, html)
        }

        function test_editMenuSelectsAndCopiesInThePreview() {
            const t = openUnlocked()
            const preview = el(t, "htmlPreview")
            tryVerify(() => preview.loader.hasShownPage && !preview.webView.loading, 20000)
            preview.webView.forceActiveFocus()
            const selection = () => {
                let value = null
                preview.webView.runJavaScript("window.getSelection().toString()",
                                              (result) => { value = result })
                tryVerify(() => value !== null, 5000)
                return value
            }
            compare(selection(), "")
            verify(t.window.editCommands.selectAll())
            tryVerify(() => selection().indexOf("Votre devis est pret") >= 0, 5000)
            TestSupport.setClipboardText("")
            verify(t.window.editCommands.copy())
            tryVerify(() => TestSupport.clipboardText().indexOf("Votre devis est pret") >= 0, 5000)
        }

        function test_blocInfosShowsZeroWithoutDetails() {
            const t = openUnlocked()
            const card = el(t, "summary.details")
            compare(named(card, "summaryValue").text, "4")
            for (let i = 1; i <= 4; ++i) {
                clearField(t, "detailLabel" + i)
                clearField(t, "detailValue" + i)
            }
            tryCompare(t.store, "currentDetailsCount", 0, 3000)
            compare(named(card, "summaryValue").text, "0")
            compare(named(card, "summaryCaption").text, "ligne(s) affichee(s)")
        }

        // ---- Presets -------------------------------------------------------------------

        // The row of a saved preset; the list creates it at its next layout.
        function presetRow(t, id) {
            const name = "customPresetRow." + id
            tryVerify(() => driver.findNamed(el(t, "customPresetList"), name), 2000, name)
            return el(t, name)
        }

        function tiles(t) {
            return ["devis", "pret", "rdv", "relance"].map(id => el(t, "presetTile." + id))
        }

        function activeTiles(t) {
            return tiles(t).filter(tile => tile.isActive).map(tile => tile.objectName)
        }

        function test_presetTilesFollowTheStore() {
            const t = openUnlocked()
            compare(tiles(t).map(tile => tile.text), ["Devis", "Appareil pret", "Rendez-vous", "Relance"])
            verify(tiles(t).every(tile => tile.summary.length > 0), "every tile has its summary")
            compare(activeTiles(t), ["presetTile.devis"])

            mouseClick(el(t, "presetTile.pret"))
            compare(t.store.activePreset, "pret")
            compare(activeTiles(t), ["presetTile.pret"])
            compare(el(t, "field.subject").field.text, t.store.data.subject)
            verify(t.store.data.subject !== defaultSubject)
            compare(el(t, "actionChip").text, "Appareil pret charge.")

            // A loaded saved preset: no tile is highlighted, though its source is "pret".
            typeInto(t, "presetNameField", "Retrait rapide")
            mouseClick(el(t, "saveAsNewButton"))
            compare(t.store.customPresets.length, 1)
            verify(t.store.activeCustomPresetID.length > 0)
            compare(t.store.activePreset, "pret")
            compare(activeTiles(t), [])

            // Choosing a tile clears the saved preset's highlight.
            mouseClick(el(t, "presetTile.rdv"))
            compare(activeTiles(t), ["presetTile.rdv"])
            compare(t.store.activeCustomPresetID, "")
            const row = presetRow(t, t.store.customPresets[0].id)
            compare(row.isActive, false)

            // Loading the saved preset again: its row lights up, the tiles go dark.
            mouseClick(named(row, "loadButton"))
            compare(activeTiles(t), [])
            const reloaded = presetRow(t, t.store.customPresets[0].id)
            compare(reloaded.isActive, true)
            compare(t.store.data.subject, el(t, "field.subject").field.text)
        }

        function test_savingAndUpdatingPresets() {
            const t = openUnlocked()
            const update = el(t, "updateLoadedButton")
            const line = el(t, "loadedPresetLine")
            const empty = el(t, "emptyPresetState")
            compare(update.text, "Mettre a jour le charge")
            compare(update.enabled, false)
            compare(line.text, "Aucun preset perso charge pour l'instant.")
            verify(empty.visible)
            compare(named(empty, "emptyText").text,
                    "Enregistre un preset perso pour rappeler un mail entier, ses champs et sa signature en un clic.")
            compare(el(t, "customPresetList").visible, false)

            const save = el(t, "saveAsNewButton")
            compare(save.text, "Enregistrer comme nouveau")
            compare(t.store.customPresetDraftName, "")
            compare(save.enabled, false)
            const nameField = typeInto(t, "presetNameField", "   ")
            compare(t.store.customPresetDraftName, "   ")
            compare(save.enabled, false, "blank name")
            nameField.selectAll()
            TestSupport.typeText(t.window, "Ecran iPhone")
            compare(save.enabled, true)
            mouseClick(save)
            compare(t.store.customPresets.length, 1)
            const entry = t.store.customPresets[0]
            const row = presetRow(t, entry.id)
            verify(row.visible)
            compare(row.isActive, true)
            compare(row.name, "Ecran iPhone")
            verify(named(row, "activeChip").visible)
            compare(named(row, "activeChip").text, "Charge")
            compare(named(row, "presetSource").text, "Devis · " + entry.subjectLine)
            verify(named(row, "loadButton").primary)
            compare(empty.visible, false)
            verify(el(t, "customPresetList").visible)
            compare(update.enabled, true)
            compare(line.text, "Preset charge : Ecran iPhone")

            // Update through the button: the preset takes the current content.
            typeInto(t, "field.subject", " (mis a jour)")
            mouseClick(update)
            compare(t.store.customPresets[0].subjectLine, defaultSubject + " (mis a jour)")

            // Deleting asks nothing and brings the empty state back.
            const current = presetRow(t, t.store.customPresets[0].id)
            mouseClick(named(current, "removeButton"))
            compare(t.store.customPresets.length, 0)
            tryVerify(() => empty.visible)
            compare(el(t, "customPresetList").visible, false)
            compare(update.enabled, false)
            compare(line.text, "Aucun preset perso charge pour l'instant.")
        }

        // ---- Reset ---------------------------------------------------------------------

        function test_resetAsksFirst() {
            const t = openUnlocked()
            const w = t.window
            typeInto(t, "field.subject", " modifie")
            const edited = defaultSubject + " modifie"
            compare(t.store.data.subject, edited)

            // Escape cancels, as Annuler does.
            mouseClick(el(t, "newButton"))
            tryVerify(() => w.resetAlert.opened)
            TestSupport.keyClick(w, Qt.Key_Escape)
            compare(t.controller.showResetAlert, false)
            tryVerify(() => !w.resetAlert.visible)
            compare(t.store.data.subject, edited)

            mouseClick(el(t, "newButton"))
            compare(t.controller.showResetAlert, true)
            tryVerify(() => w.resetAlert.opened)
            compare(named(w.resetAlert.contentItem, "alertTitle").text, "Revenir au template Korvel de base ?")
            compare(named(w.resetAlert.contentItem, "alertMessage").text,
                    "Le contenu actuel sera remplace par le modele natif par defaut.")
            mouseClick(named(w.resetAlert.contentItem, "resetCancelButton"))
            compare(t.controller.showResetAlert, false)
            tryVerify(() => !w.resetAlert.visible)
            compare(t.store.data.subject, edited, "Annuler keeps the content")
            compare(el(t, "field.subject").field.text, edited)

            mouseClick(el(t, "presetTile.relance"))
            mouseClick(el(t, "newButton"))
            tryVerify(() => w.resetAlert.opened)
            const confirm = named(w.resetAlert.contentItem, "resetConfirmButton")
            compare(confirm.text, "Reinitialiser")
            mouseClick(confirm)
            compare(t.controller.showResetAlert, false)
            tryVerify(() => !w.resetAlert.visible)
            compare(t.store.data.subject, defaultSubject)
            compare(el(t, "field.subject").field.text, defaultSubject)
            compare(el(t, "field.mailTitle").field.text, "Votre devis est pret")
            compare(activeTiles(t), ["presetTile.devis"])
            compare(t.store.lastAction, "Nouveau message.")
        }

        // ---- Sync ----------------------------------------------------------------------

        function test_syncButtonsAreDisabledWhileSyncing() {
            const t = openUnlocked()
            const push = el(t, "pushButton")
            const pull = el(t, "pullButton")
            compare(push.text, "Envoyer vers l'iPhone")
            compare(pull.text, "Recuperer depuis l'iPhone")
            verify(push.primary && !pull.primary)
            typeInto(t, "syncCodeField", "ABCD-EFGH-IJKL-MNOP")
            compare(t.store.syncCode, "ABCD-EFGH-IJKL-MNOP")
            verify(push.enabled && pull.enabled)
            reveal(t, push)

            for (const button of [push, pull]) {
                const answeredBefore = t.alerts.answered.length
                mouseClick(button)
                // The request is under way: nothing has answered yet.
                compare(t.store.isSyncing, true, button.text)
                compare(push.enabled, false)
                compare(pull.enabled, false)
                tryCompare(t.store, "isSyncing", false, 15000)
                verify(push.enabled && pull.enabled, "enabled again")
                // The refused connection is reported in the status line and in an alert.
                tryVerify(() => t.alerts.answered.length === answeredBefore + 1, 5000)
                compare(el(t, "syncStatusLine").text, t.alerts.answered[answeredBefore])
            }
            compare(t.alerts.unanswered, 0)
        }

        function test_shortSyncCodeIsRefusedWithAnAlert() {
            const t = openUnlocked()
            typeInto(t, "syncCodeField", "abc")
            mouseClick(reveal(t, el(t, "pushButton")))
            tryVerify(() => t.alerts.answered.length === 1, 5000, "alert answered")
            compare(t.alerts.answered,
                    ["Le code prive doit contenir au moins 16 caracteres. Genere-le depuis l'interface iPhone."])
            compare(t.alerts.unanswered, 0)
            compare(JSON.stringify(t.alerts.shown), JSON.stringify([{ title: "Velino", message: t.alerts.answered[0],
                                                                      buttons: 1, button: "OK", modal: true }]))
            compare(t.store.isSyncing, false)
            compare(t.store.syncCode, "ABC")
            compare(el(t, "syncCodeField").field.text, "ABC")
            compare(el(t, "syncStatusLine").text, t.alerts.answered[0])
            verify(!t.controller.dialogs.alertVisible)
            verify(!t.window.warningAlert.visible)
        }

        // ---- Export --------------------------------------------------------------------

        // The items of the file dialog's Qt Quick form (the one used without a native
        // dialog, as here).
        function fileDialogItem(w, name) {
            return driver.findNamed(w.contentItem.parent, name) || driver.findNamed(w.overlay, name)
        }

        function test_exportThroughTheFileDialog() {
            const t = openUnlocked()
            const w = t.window
            const dialogs = t.controller.dialogs
            const before = t.store.lastAction
            // The dialog opens in the home folder when there is no Documents folder.
            const home = TestSupport.makeTemporaryFolder()
            TestSupport.setEnvironment("HOME", home)
            try {
                // Annuler changes nothing.
                mouseClick(el(t, "exportButton"))
                tryVerify(() => w.exportDialog && w.exportDialog.visible, 3000, "file dialog shown")
                compare(w.exportDialog.title, "Exporter le mail HTML")
                compare(w.exportDialog.currentFolder, "file://" + home)
                const nameField = fileDialogItem(w, "fileNameTextField")
                verify(nameField, "file name field")
                tryCompare(nameField, "text", "votre-devis-korvel-est-pret.html")
                w.exportDialog.reject()
                tryVerify(() => !dialogs.isModal)
                compare(t.store.lastAction, before)

                // Accepted as offered: written in the dialog's folder.
                mouseClick(el(t, "exportButton"))
                tryVerify(() => w.exportDialog && w.exportDialog.visible, 3000)
                w.exportDialog.accept()
                const path = home + "/votre-devis-korvel-est-pret.html"
                tryVerify(() => TestSupport.fileExists(path), 3000, path)
                compare(TestSupport.readTextFile(path), t.store.generatedHTML)
                compare(t.store.lastAction, "HTML exporte vers votre-devis-korvel-est-pret.html.")
                verify(!dialogs.isModal)

                // The same name again: the window asks before replacing, once.
                mouseClick(el(t, "exportButton"))
                tryVerify(() => w.exportDialog && w.exportDialog.visible, 3000)
                w.exportDialog.accept()
                tryVerify(() => w.replaceAlert.opened, 3000, "replacement question shown")
                verify(!w.exportDialog || !w.exportDialog.visible)
                compare(driver.findNamed(w.replaceAlert.contentItem, "alertMessage").text,
                        "Un fichier nomme \"votre-devis-korvel-est-pret.html\" existe deja. Le remplacer ?")
                mouseClick(driver.findNamed(w.replaceAlert.contentItem, "replaceConfirmButton"))
                tryVerify(() => !dialogs.isModal)
                compare(t.store.lastAction, "HTML exporte vers votre-devis-korvel-est-pret.html.")
            } finally {
                TestSupport.setEnvironment("HOME", TestSupport.homeAtStart())
            }
        }

        // ---- Large saved states ----------------------------------------------------------

        // The preset rows the list has created (delegates), whatever is on screen.
        function createdRows(list) {
            const rows = []
            for (let i = 0; i < list.contentItem.children.length; ++i) {
                if (list.contentItem.children[i].presetId !== undefined)
                    rows.push(list.contentItem.children[i])
            }
            return rows
        }

        function test_presetListCreatesOnlyTheRowsOnScreen() {
            verify(TestSupport.saveStateWithPresets(1000))
            const t = openUnlocked()
            const list = el(t, "customPresetList")
            compare(list.count, 1000)
            verify(list.height <= list.maximumHeight, "the list keeps its own height")
            const created = createdRows(list).length
            verify(created > 0 && created <= 15, created + " rows created for 1000 presets")
            compare(el(t, "emptyPresetState").visible, false)

            const model = t.controller.customPresetModel
            const spies = {}
            for (const name of ["modelReset", "dataChanged", "rowsInserted", "rowsRemoved",
                                "rowsMoved", "layoutChanged"]) {
                spies[name] = createTemporaryObject(signalSpyComponent, testCase,
                                                    { target: model, signalName: name })
            }
            const counts = () => Object.keys(spies).map(name => name + " " + spies[name].count).join(", ")

            // Loading a preset: the rows of the old and the new highlight at most.
            reveal(t, list)
            const second = list.itemAtIndex(1)
            mouseClick(named(second, "loadButton"))
            compare(t.store.activeCustomPresetID, second.presetId)
            verify(named(second, "customPresetRow." + second.presetId).isActive)
            compare(counts(), "modelReset 0, dataChanged 1, rowsInserted 0, rowsRemoved 0, rowsMoved 0, layoutChanged 0")

            // Overwriting it moves its row to the top; deleting it removes that row.
            mouseClick(named(list.itemAtIndex(1), "overwriteButton"))
            tryVerify(() => list.itemAtIndex(0) && list.itemAtIndex(0).presetId === t.store.activeCustomPresetID,
                      2000, "overwritten row on top")
            compare(spies.rowsMoved.count, 1)
            mouseClick(named(list.itemAtIndex(0), "removeButton"))
            tryCompare(list, "count", 999)
            compare(counts(), "modelReset 0, dataChanged 2, rowsInserted 0, rowsRemoved 1, rowsMoved 1, layoutChanged 0")

            // Scrolled to the end: rows are made for the new place, not for the whole list.
            list.positionViewAtEnd()
            waitForRendering(list)
            verify(list.itemAtIndex(998), "last row created")
            verify(createdRows(list).length <= 15, createdRows(list).length + " rows after scrolling")
        }

        Component {
            id: signalSpyComponent
            SignalSpy {}
        }

        function test_veryLongTextIsSummarisedAndKeptWhole_data() {
            return [
                { tag: "message body, one 4 MB line", field: "mailBody", length: 4000000, lineLength: 0 },
                { tag: "message body, 4 MB in short lines", field: "mailBody", length: 4000000, lineLength: 26 },
                { tag: "single-line field", field: "senderEmail", length: 150000, lineLength: 0 },
                { tag: "colour field", field: "accentPrimary", length: 150000, lineLength: 0 },
            ]
        }

        function test_veryLongTextIsSummarisedAndKeptWhole(data) {
            verify(TestSupport.saveStateWithLongField(data.field, data.length, data.lineLength))
            const expected = TestSupport.longText(data.length, data.lineLength)
            const t = openUnlocked()
            const wrapper = el(t, "field." + data.field)
            const control = wrapper.field !== undefined ? wrapper.field : wrapper.editor
            const summary = named(wrapper, "longTextSummary")
            verify(summary.visible)
            verify(summary.text.startsWith("Texte tres long ("), summary.text)
            verify(summary.text.indexOf(" Mo) : ecran batterie") > 0 || summary.text.indexOf(" Ko) : ecran batterie") > 0,
                   summary.text)
            compare(control.text, "", "nothing of the long text is laid out")
            compare(control.visible, false)
            const button = named(wrapper, "editAnywayButton")
            compare(button.text, "Modifier quand meme")
            compare(button.Accessible.name, "Modifier quand meme : " + wrapper.title)

            // Typing elsewhere regenerates and saves with the long text whole.
            const before = t.store.generatedHTML
            typeInto(t, "field.recipientName", "Z")
            waitForDebounce(t, before)
            verify(t.store.data[data.field] === expected, "record unchanged")
            verify(summary.visible)
            // The preview shows the e-mail with the long text cut, and says so.
            const preview = el(t, "htmlPreview")
            verify(preview.html.length < 100000, "preview of " + preview.html.length + " characters")
            verify(preview.html.indexOf(t.store.data.recipientName) >= 0, "preview follows the edit")
            verify(el(t, "shortenedPreviewNote").visible)

            if (data.length > 1000000)
                return // laying out several megabytes is what the summary avoids
            // From the keyboard: the button takes the focus, Return hands over the text.
            button.forceActiveFocus()
            tryVerify(() => button.activeFocus)
            TestSupport.keyClick(t.window, Qt.Key_Return)
            tryVerify(() => control.visible && control.activeFocus, 5000, "editor shown and focused")
            compare(control.text.length, data.length)
            compare(summary.visible, false)
            verify(t.store.data[data.field] === expected, "record unchanged after opening the editor")
        }
    }
}
