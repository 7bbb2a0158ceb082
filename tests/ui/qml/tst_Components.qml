import QtQuick
import QtTest
import Velino

Item {
    id: scene
    width: 1000
    height: 800

    Component { id: checklistComponent; ChecklistRow { width: 400 } }
    Component { id: chipComponent; StatusChip { } }
    Component { id: presetRowComponent; CustomPresetRow { width: 900 } }
    Component { id: logoComponent; BundleLogoView { } }
    Component { id: toolbarComponent; ToolbarButton { x: 20; y: 20 } }
    Component { id: tileComponent; PresetTileButton { x: 20; y: 20; width: 200 } }
    Component { id: textFieldComponent; LabeledTextField { width: 300 } }
    Component { id: secureFieldComponent; LabeledSecureField { width: 300 } }
    Component { id: colorFieldComponent; BrandingColorField { width: 300 } }
    Component { id: editorComponent; LabeledTextEditor { width: 400 } }
    Component {
        id: sectionComponent
        SectionCard {
            width: 500
            Rectangle { objectName: "content"; implicitWidth: 100; implicitHeight: 40 }
        }
    }
    Component { id: signalSpyComponent; SignalSpy { } }
    Component { id: surfaceComponent; Surface { } }

    TestCase {
        id: testCase
        name: "Components"
        when: windowShown

        function findNamed(item, name) {
            if (!item || item.objectName === name)
                return item || null
            for (let i = 0; i < item.children.length; ++i) {
                const found = findNamed(item.children[i], name)
                if (found)
                    return found
            }
            return null
        }

        function spy(target, signalName) {
            return createTemporaryObject(signalSpyComponent, testCase,
                                         { target: target, signalName: signalName })
        }

        function compareColor(actual, r, g, b, a, message) {
            fuzzyCompare(actual.r, r, 0.003, message + " red")
            fuzzyCompare(actual.g, g, 0.003, message + " green")
            fuzzyCompare(actual.b, b, 0.003, message + " blue")
            fuzzyCompare(actual.a, a, 0.003, message + " alpha")
        }

        function typeText(text) {
            for (let i = 0; i < text.length; ++i)
                keyClick(text[i])
        }

        // Colour `c` (with its alpha) laid over the opaque `under`.
        function over(c, under) {
            return Qt.rgba(c.r * c.a + under.r * (1 - c.a), c.g * c.a + under.g * (1 - c.a),
                           c.b * c.a + under.b * (1 - c.a), 1)
        }

        // Text at 4.5:1, field boundaries and the focus ring at 3:1, on the surfaces they
        // are drawn on (a card over the window's background; the header's black veil).
        function test_readableColours_data() {
            const base = AppTheme.backgroundBase
            const card = over(Qt.rgba(0.065, 0.085, 0.135, 0.96), base)
            const header = over(Qt.rgba(0, 0, 0, 0.26), base)
            const field = over(Qt.rgba(1, 1, 1, 0.065), card)
            const chip = (tint) => over(AppTheme.withOpacity(tint, 0.92), header)
            const white = Qt.rgba(1, 1, 1, 1)
            return [
                { tag: "text on the cyan chip", fg: AppTheme.textOn(chip(AppTheme.cyan)), bg: chip(AppTheme.cyan), min: 4.5 },
                { tag: "text on the format chip", fg: AppTheme.textOn(chip(AppTheme.accentFill)), bg: chip(AppTheme.accentFill), min: 4.5 },
                { tag: "text on the save chip", fg: AppTheme.textOn(chip(AppTheme.accentSoftFill)), bg: chip(AppTheme.accentSoftFill), min: 4.5 },
                { tag: "white on the primary fill, blue end", fg: white, bg: AppTheme.accentFill, min: 4.5 },
                { tag: "white on the primary fill, violet end", fg: white, bg: AppTheme.accentSoftFill, min: 4.5 },
                { tag: "placeholder in a field", fg: over(AppTheme.placeholder, field), bg: field, min: 4.5 },
                { tag: "muted text on a card", fg: over(AppTheme.muted, card), bg: card, min: 4.5 },
                { tag: "link on a card", fg: AppTheme.link, bg: card, min: 4.5 },
                { tag: "destructive label on a button", fg: AppTheme.destructive, bg: over(AppTheme.buttonSurface, card), min: 4.5 },
                { tag: "field boundary on a card", fg: over(AppTheme.fieldLine, card), bg: card, min: 3 },
                { tag: "focus ring on a card", fg: AppTheme.focusRing, bg: card, min: 3 },
                { tag: "focus ring on the header", fg: AppTheme.focusRing, bg: header, min: 3 },
            ]
        }

        function test_readableColours(data) {
            const ratio = AppTheme.contrast(data.fg, data.bg)
            verify(ratio >= data.min, data.tag + ": " + ratio.toFixed(2) + ":1")
        }

        function test_surfaceGradientRunsCornerToCorner() {
            const surface = createTemporaryObject(surfaceComponent, scene, { width: 300, height: 120, radius: 20,
                                                           gradient: AppTheme.accentGradient })
            verify(surface)
            waitForRendering(surface)
            const image = grabImage(surface)
            // Accent in the top-leading corner region, accentSoft in the bottom-trailing one.
            const topLeading = image.pixel(30, 30)
            const bottomTrailing = image.pixel(270, 90)
            verify(topLeading.b > topLeading.r, "blue first")
            verify(bottomTrailing.r > topLeading.r + 0.1, "violet last")
            // Outside the rounded corner the white test window shows.
            const corner = image.pixel(1, 1)
            verify(corner.r > 0.9 && corner.g > 0.9, "rounded corner, got " + corner)
        }

        function test_sectionCardPutsItsContentBelowTheHeader() {
            const card = createTemporaryObject(sectionComponent, scene,
                                               { title: "Destinataire", subtitle: "Objet et coordonnees du client." })
            verify(card)
            const content = findNamed(card, "content")
            const subtitle = findNamed(card, "sectionSubtitle")
            const pos = content.mapToItem(card, 0, 0)
            verify(pos.y > subtitle.mapToItem(card, 0, subtitle.height).y, "below the subtitle")
            verify(pos.x > 0 && pos.x + content.width < card.width, "inset in the card")
            verify(card.height > pos.y + content.height, "the card grows with its content")
        }

        function test_checklistRow_data() {
            return [
                { tag: "passed", ok: true, mark: "OK", tone: AppTheme.green },
                { tag: "failed", ok: false, mark: "A", tone: AppTheme.orange },
            ]
        }

        function test_checklistRow(data) {
            const row = createTemporaryObject(checklistComponent, scene,
                                              { ok: data.ok, text: "Objet entre 12 et 90 caracteres" })
            verify(row)
            const mark = findNamed(row, "badgeMark")
            compare(mark.text, data.mark)
            compareColor(mark.color, data.tone.r, data.tone.g, data.tone.b, 1, "mark")
            compare(findNamed(row, "checkText").text, "Objet entre 12 et 90 caracteres")
        }

        function test_statusChip() {
            const chip = createTemporaryObject(chipComponent, scene, { text: "Charge", tint: AppTheme.accent })
            verify(chip)
            verify(chip.width > 20)
            waitForRendering(chip)
            const image = grabImage(chip)
            const centre = image.pixel(Math.floor(chip.width / 2), 2)
            verify(centre.b > centre.r, "tinted fill")
        }

        function test_customPresetRow() {
            const updated = new Date(2025, 2, 5, 14, 7)
            const row = createTemporaryObject(presetRowComponent, scene, {
                name: "Devis iPhone", sourceTitle: "Devis", subjectLine: "Votre devis Korvel est pret",
                updatedAt: updated, isActive: false })
            verify(row)
            compare(findNamed(row, "presetName").text, "Devis iPhone")
            compare(findNamed(row, "presetSource").text, "Devis · Votre devis Korvel est pret")
            compare(findNamed(row, "presetUpdated").text, "Mis a jour le " + UiHelpers.updatedLabel(updated))
            verify(findNamed(row, "presetUpdated").text.startsWith("Mis a jour le 05 mars · 14:07"))
            verify(!findNamed(row, "activeChip").visible)
            verify(!findNamed(row, "loadButton").primary)
            row.isActive = true
            verify(findNamed(row, "activeChip").visible)
            verify(findNamed(row, "loadButton").primary)
            verify(!findNamed(row, "overwriteButton").primary)
            verify(!findNamed(row, "removeButton").primary)

            // Each button sends its own signal.
            const buttons = [["loadButton", "load", "Charger"], ["overwriteButton", "overwrite", "Remplacer"],
                             ["removeButton", "remove", "Supprimer"]]
            const spies = buttons.map(([, signalName]) => spy(row, signalName))
            waitForRendering(row)
            for (let i = 0; i < buttons.length; ++i) {
                const button = findNamed(row, buttons[i][0])
                compare(button.text, buttons[i][2])
                mouseClick(button)
                compare(spies.map(s => s.count), spies.map((s, j) => j <= i ? 1 : 0), buttons[i][1])
            }
        }

        function test_bundleLogoShowsTheResource() {
            const logo = createTemporaryObject(logoComponent, scene,
                                               { resourceName: "VelinoLogo", size: 62, cornerRadius: 18 })
            verify(logo)
            tryVerify(() => logo.showsImage)
            compare(logo.width, 62)
            verify(findNamed(logo, "logoImage").visible)
            verify(!findNamed(logo, "logoPlaceholder").visible)
        }

        function test_bundleLogoFallsBackToTheAccentSquare() {
            const logo = createTemporaryObject(logoComponent, scene,
                                               { resourceName: "NoSuchLogo", size: 68, cornerRadius: 20 })
            verify(logo)
            waitForRendering(logo)
            verify(!logo.showsImage)
            const placeholder = findNamed(logo, "logoPlaceholder")
            verify(placeholder.visible)
            compare(logo.width, 68)
            const image = grabImage(logo)
            // The test window is white: a rounded corner leaves it visible.
            const corner = image.pixel(0, 0)
            verify(corner.r > 0.9 && corner.g > 0.9, "rounded corner, got " + corner)
            const centre = image.pixel(34, 34)
            verify(centre.r < 0.5 && centre.b > 0.9, "accent gradient inside, got " + centre)
        }

        function test_toolbarButtonPressedAndDisabled() {
            const button = createTemporaryObject(toolbarComponent, scene, { text: "Exporter", primary: true })
            verify(button)
            const clicks = spy(button, "clicked")
            compare(button.opacity, 1)
            compare(button.scale, 1)
            mousePress(button)
            tryCompare(button, "opacity", 0.9, 1000)
            tryCompare(button, "scale", 0.985, 1000)
            mouseRelease(button)
            tryCompare(button, "opacity", 1, 1000)
            tryCompare(button, "scale", 1, 1000)
            compare(clicks.count, 1)

            button.enabled = false
            tryVerify(() => button.opacity < 0.6)
            mouseClick(button)
            compare(clicks.count, 1)
        }

        function test_presetTile() {
            const tile = createTemporaryObject(tileComponent, scene,
                                               { text: "Devis", summary: "Estimation et delai", isActive: false })
            verify(tile)
            compare(tile.scale, 1)
            mousePress(tile)
            tryCompare(tile, "scale", 0.99, 1000)
            mouseRelease(tile)
            tryCompare(tile, "scale", 1, 1000)
            tile.isActive = true
            compare(tile.background.gradient, AppTheme.accentFillGradient)
            tile.isActive = false
            compare(tile.background.gradient, null)
        }

        function test_labeledTextFieldReportsEdits() {
            const field = createTemporaryObject(textFieldComponent, scene,
                                                { title: "Nom du client", text: "Lea" })
            verify(field)
            compare(field.field.text, "Lea")
            compare(field.field.placeholderText, "Nom du client")
            const edits = spy(field, "edited")
            field.field.forceActiveFocus()
            field.field.cursorPosition = 3
            keyClick("h")
            compare(edits.count, 1)
            compare(edits.signalArguments[0][0], "Leah")
            // The owner's value wins when it changes.
            field.text = "Paul"
            compare(field.field.text, "Paul")
            compare(edits.count, 1)
        }

        function test_labeledSecureFieldMasks() {
            const field = createTemporaryObject(secureFieldComponent, scene, { title: "Code" })
            compare(field.field.echoMode, TextInput.Password)
        }

        function test_brandingColorFieldSwatch() {
            const field = createTemporaryObject(colorFieldComponent, scene,
                                                { title: "Couleur principale", text: "#2F7DF6" })
            verify(field)
            const swatch = findNamed(field, "swatch")
            compareColor(swatch.color, 47 / 255, 125 / 255, 246 / 255, 1, "initial swatch")

            field.field.forceActiveFocus()
            field.field.cursorPosition = field.field.text.length
            keyClick("F")
            compare(field.field.text, "#2F7DF6F", "nothing is corrected")
            compare(swatch.color.a, 0, "transparent while unparsable")
            keyClick(Qt.Key_Backspace)
            compareColor(swatch.color, 47 / 255, 125 / 255, 246 / 255, 1, "back to a colour")

            field.field.selectAll()
            typeText("#abc")
            compareColor(swatch.color, 0xaa / 255, 0xbb / 255, 0xcc / 255, 1, "short form")
        }

        function test_labeledTextEditor() {
            const editor = createTemporaryObject(editorComponent, scene,
                                                 { title: "Message principal", text: "Bonjour", minHeight: 150 })
            verify(editor)
            verify(editor.editor.height >= 150)
            const edits = spy(editor, "edited")
            editor.text = "Bonsoir"
            compare(editor.editor.text, "Bonsoir")
            compare(edits.count, 0, "a new bound value is not an edit")
            editor.editor.forceActiveFocus()
            editor.editor.cursorPosition = editor.editor.length
            keyClick("!")
            compare(edits.count, 1)
            compare(edits.signalArguments[0][0], "Bonsoir!")
            // Long text makes it grow past its minimum.
            editor.text = "ligne\n".repeat(30)
            tryVerify(() => editor.editor.height > 150, 2000, "grows with its text")
        }
    }
}
