import QtQuick
import QtTest
import Velino

Item {
    id: scene
    width: 1000
    height: 800

    Component { id: summaryComponent; SummaryCard { width: 240 } }
    Component { id: checklistComponent; ChecklistRow { width: 400 } }
    Component { id: chipComponent; StatusChip { } }
    Component { id: presetRowComponent; CustomPresetRow { width: 900 } }
    Component { id: emptyComponent; EmptyPresetStateView { width: 600 } }
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
            if (!item)
                return null
            if (item.objectName === name)
                return item
            const children = item.children
            for (let i = 0; i < children.length; ++i) {
                const found = findNamed(children[i], name)
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

        // Palette

        function test_palette() {
            compareColor(AppTheme.accent, 0.18, 0.49, 0.96, 1, "accent")
            compareColor(AppTheme.accentSoft, 0.48, 0.36, 1.0, 1, "accentSoft")
            compareColor(AppTheme.cyan, 0.34, 0.76, 1.0, 1, "cyan")
            compareColor(AppTheme.text, 1, 1, 1, 0.95, "text")
            compareColor(AppTheme.muted, 1, 1, 1, 0.68, "muted")
            compareColor(AppTheme.line, 1, 1, 1, 0.08, "line")
            compareColor(AppTheme.inputLine, 1, 1, 1, 0.12, "inputLine")
            compareColor(AppTheme.buttonSurface, 1, 1, 1, 0.08, "buttonSurface")
            compareColor(AppTheme.shadow, 0, 0, 0, 0.24, "shadow")
        }

        function test_gradients_data() {
            return [
                { tag: "background", gradient: AppTheme.background,
                  stops: [[0.02, 0.03, 0.06, 1], [0.03, 0.05, 0.10, 1], [0.02, 0.03, 0.06, 1]] },
                { tag: "panelBackground", gradient: AppTheme.panelBackground,
                  stops: [[0.05, 0.07, 0.11, 0.94], [0.03, 0.04, 0.08, 0.94]] },
                { tag: "previewBackground", gradient: AppTheme.previewBackground,
                  stops: [[0.04, 0.06, 0.10, 0.96], [0.03, 0.04, 0.08, 0.96]] },
                { tag: "cardSurface", gradient: AppTheme.cardSurface,
                  stops: [[0.08, 0.10, 0.16, 0.96], [0.05, 0.07, 0.11, 0.96]] },
                { tag: "previewSurface", gradient: AppTheme.previewSurface,
                  stops: [[0.07, 0.09, 0.14, 0.98], [0.04, 0.06, 0.10, 0.98]] },
                { tag: "inputSurface", gradient: AppTheme.inputSurface,
                  stops: [[1, 1, 1, 0.08], [1, 1, 1, 0.05]] },
                { tag: "headerSurface", gradient: AppTheme.headerSurface,
                  stops: [[0, 0, 0, 0.34], [0, 0, 0, 0.18]] },
                { tag: "accentGradient", gradient: AppTheme.accentGradient,
                  stops: [[0.18, 0.49, 0.96, 1], [0.48, 0.36, 1.0, 1]] },
            ]
        }

        function test_gradients(data) {
            const stops = data.gradient.stops
            compare(stops.length, data.stops.length)
            for (let i = 0; i < stops.length; ++i) {
                fuzzyCompare(stops[i].position, i / (stops.length - 1), 0.0001, "evenly spaced")
                const s = data.stops[i]
                compareColor(stops[i].color, s[0], s[1], s[2], s[3], data.tag + " stop " + i)
            }
        }

        function test_gradientsRunCornerToCorner() {
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

        // Colour parser exposed to QML

        function test_colorFromHex_data() {
            return [
                { tag: "upper", text: "#2F7DF6", rgb: [47, 125, 246] },
                { tag: "lower with white space", text: " #2f7df6\n", rgb: [47, 125, 246] },
                { tag: "short", text: "#abc", rgb: [0xaa, 0xbb, 0xcc] },
            ]
        }

        function test_colorFromHex(data) {
            const c = UiHelpers.colorFromHex(data.text)
            compareColor(c, data.rgb[0] / 255, data.rgb[1] / 255, data.rgb[2] / 255, 1, data.tag)
        }

        function test_colorFromHexRefusals_data() {
            return [ { tag: "abc", text: "abc" }, { tag: "#abcd", text: "#abcd" },
                     { tag: "alpha", text: "#2F7DF6FF" }, { tag: "#GGGGGG", text: "#GGGGGG" } ]
        }

        function test_colorFromHexRefusals(data) {
            compare(UiHelpers.colorFromHex(data.text).a, 0)
            verify(!UiHelpers.isHexColor(data.text))
        }

        // Components

        function test_sectionCard() {
            const card = createTemporaryObject(sectionComponent, scene,
                                               { title: "Destinataire", subtitle: "Objet et coordonnees du client." })
            verify(card)
            compare(findNamed(card, "sectionTitle").text, "Destinataire")
            compare(findNamed(card, "sectionTitle").font.pixelSize, 18)
            compare(findNamed(card, "sectionSubtitle").text, "Objet et coordonnees du client.")
            compare(findNamed(card, "sectionSubtitle").font.pixelSize, 12)
            const content = findNamed(card, "content")
            verify(content)
            const pos = content.mapToItem(card, 0, 0)
            compare(pos.x, 18)
            const subtitle = findNamed(card, "sectionSubtitle")
            const subtitleBottom = subtitle.mapToItem(card, 0, subtitle.height).y
            compare(pos.y, subtitleBottom + 16)
            compare(card.height, pos.y + content.height + 18)
        }

        function test_summaryCardUpperCasesItsTitle() {
            const card = createTemporaryObject(summaryComponent, scene,
                                               { title: "Etat", value: "Pret", caption: "Version actuelle" })
            verify(card)
            compare(findNamed(card, "summaryTitle").text, "ETAT")
            compare(findNamed(card, "summaryValue").text, "Pret")
            compare(findNamed(card, "summaryValue").maximumLineCount, 2)
            compare(findNamed(card, "summaryCaption").text, "Version actuelle")
            compare(findNamed(card, "summaryCaption").maximumLineCount, 2)
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
            const badge = findNamed(row, "badge")
            compare(badge.width, 28)
            compare(badge.height, 28)
            compareColor(badge.color, data.tone.r, data.tone.g, data.tone.b, data.ok ? 0.14 : 0.16, "badge")
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
            compare(findNamed(row, "activeChip").text, "Charge")
            verify(findNamed(row, "loadButton").primary)
            verify(!findNamed(row, "overwriteButton").primary)
            verify(!findNamed(row, "removeButton").primary)
        }

        function test_customPresetRowButtons() {
            const row = createTemporaryObject(presetRowComponent, scene, {
                name: "A", sourceTitle: "Relance", subjectLine: "S", updatedAt: new Date() })
            const loads = spy(row, "load")
            const overwrites = spy(row, "overwrite")
            const removes = spy(row, "remove")
            waitForRendering(row)
            mouseClick(findNamed(row, "loadButton"))
            compare(loads.count, 1)
            compare(overwrites.count, 0)
            mouseClick(findNamed(row, "overwriteButton"))
            compare(overwrites.count, 1)
            mouseClick(findNamed(row, "removeButton"))
            compare(removes.count, 1)
            compare(findNamed(row, "loadButton").text, "Charger")
            compare(findNamed(row, "overwriteButton").text, "Remplacer")
            compare(findNamed(row, "removeButton").text, "Supprimer")
        }

        function test_emptyPresetStateView() {
            const view = createTemporaryObject(emptyComponent, scene)
            verify(view)
            compare(findNamed(view, "emptyText").text,
                    "Enregistre un preset perso pour rappeler un mail entier, ses champs et sa signature en un clic.")
            verify(findNamed(view, "trayGlyph").width > 0)
        }

        function test_bundleLogoShowsTheResource() {
            const logo = createTemporaryObject(logoComponent, scene,
                                               { resourceName: "VelinoLogo", size: 62, cornerRadius: 18 })
            verify(logo)
            tryVerify(() => logo.showsImage)
            compare(logo.width, 62)
            compare(logo.height, 62)
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
            compare(placeholder.radius, 20)
            compare(placeholder.gradient, AppTheme.accentGradient)
            compare(logo.width, 68)
            const image = grabImage(logo)
            // The test window is white: a rounded corner leaves it visible.
            const corner = image.pixel(0, 0)
            verify(corner.r > 0.9 && corner.g > 0.9, "rounded corner, got " + corner)
            const centre = image.pixel(34, 34)
            verify(centre.r < 0.5 && centre.b > 0.9, "accent gradient inside, got " + centre)
        }

        function test_toolbarButtonPressedState() {
            const button = createTemporaryObject(toolbarComponent, scene, { text: "Exporter" })
            verify(button)
            compare(button.opacity, 1)
            compare(button.scale, 1)
            compare(button.leftPadding, 16)
            compare(button.topPadding, 10)
            compare(button.font.pixelSize, 13)
            compare(button.focusPolicy, Qt.NoFocus)
            mousePress(button)
            tryCompare(button, "opacity", 0.9, 1000)
            tryCompare(button, "scale", 0.985, 1000)
            mouseRelease(button)
            tryCompare(button, "opacity", 1, 1000)
            tryCompare(button, "scale", 1, 1000)
        }

        function test_toolbarButtonDisabled() {
            const button = createTemporaryObject(toolbarComponent, scene, { text: "Envoyer", primary: true })
            const clicks = spy(button, "clicked")
            button.enabled = false
            tryVerify(() => button.opacity < 0.6)
            mouseClick(button)
            compare(clicks.count, 0)
        }

        function test_toolbarButtonLabelColours() {
            const primary = createTemporaryObject(toolbarComponent, scene, { text: "A", primary: true })
            compareColor(primary.contentItem.color, 1, 1, 1, 1, "primary label")
            const secondary = createTemporaryObject(toolbarComponent, scene, { text: "B" })
            compareColor(secondary.contentItem.color, 1, 1, 1, 0.95, "secondary label")
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
            compare(tile.background.gradient, AppTheme.accentGradient)
            tile.isActive = false
            compare(tile.background.gradient, null)
        }

        function test_labeledTextFieldReportsEdits() {
            const field = createTemporaryObject(textFieldComponent, scene,
                                                { title: "Nom du client", text: "Lea" })
            verify(field)
            compare(field.field.text, "Lea")
            compare(field.field.placeholderText, "Nom du client")
            compare(field.field.parent.height, 44)
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
            compare(swatch.width, 22)
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
