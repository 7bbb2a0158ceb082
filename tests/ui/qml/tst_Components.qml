import QtQuick
import QtTest
import Velino

Item {
    id: scene
    width: 1000
    height: 800

    WindowDriver { id: driver }

    TestCase {
        id: testCase
        name: "Components"
        when: windowShown

        // A new `qml` (a type name, or a whole object) with `properties`.
        function make(qml, properties) {
            const item = createTemporaryQmlObject("import QtQuick; import Velino; " + (qml.indexOf("{") < 0 ? qml + " { }" : qml), scene)
            verify(item, qml)
            return Object.assign(item, properties)
        }

        function named(item, name) {
            return driver.findNamed(item, name)
        }

        function spy(target, signalName) {
            return Object.assign(createTemporaryQmlObject("import QtTest; SignalSpy { }", testCase),
                                 { target: target, signalName: signalName })
        }

        function compareColour(actual, expected, message) {
            for (const channel of ["r", "g", "b", "a"])
                fuzzyCompare(actual[channel], expected[channel], 0.003, message + " " + channel)
        }

        // The pixel of `item` at (x, y), once drawn.
        function pixel(item, x, y) {
            waitForRendering(item)
            return grabImage(item).pixel(x, y)
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

        // On the white test window: the rounded corners leave it visible; the fills show inside.
        function test_drawnSurfaces() {
            const surface = make("Surface", { width: 300, height: 120, radius: 20, gradient: AppTheme.accentGradient })
            const topLeading = pixel(surface, 30, 30)
            verify(topLeading.b > topLeading.r, "accent first, got " + topLeading)
            verify(pixel(surface, 270, 90).r > topLeading.r + 0.1, "accentSoft last")
            const corner = pixel(surface, 1, 1)
            verify(corner.r > 0.9 && corner.g > 0.9, "rounded surface corner, got " + corner)

            const chip = make("StatusChip", { text: "Charge", tint: AppTheme.accent })
            verify(chip.width > 20)
            const centre = pixel(chip, Math.floor(chip.width / 2), 2)
            verify(centre.b > centre.r, "tinted chip, got " + centre)

            const logo = make("BundleLogoView", { resourceName: "NoSuchLogo", size: 68, cornerRadius: 20 })
            verify(!logo.showsImage && named(logo, "logoPlaceholder").visible)
            compare(logo.width, 68)
            const logoCorner = pixel(logo, 0, 0)
            verify(logoCorner.r > 0.9 && logoCorner.g > 0.9, "rounded logo corner, got " + logoCorner)
            const inside = pixel(logo, 34, 34)
            verify(inside.r < 0.5 && inside.b > 0.9, "accent placeholder, got " + inside)

            const shown = make("BundleLogoView", { resourceName: "VelinoLogo", size: 62, cornerRadius: 18 })
            tryVerify(() => shown.showsImage)
            compare(shown.width, 62)
            verify(named(shown, "logoImage").visible && !named(shown, "logoPlaceholder").visible)
        }

        function test_sectionCardPutsItsContentBelowTheHeader() {
            const card = make("SectionCard { width: 500; Rectangle { objectName: \"content\"; implicitWidth: 100; implicitHeight: 40 } }", { title: "Destinataire", subtitle: "Objet et coordonnees du client." })
            const content = named(card, "content")
            const subtitle = named(card, "sectionSubtitle")
            const pos = content.mapToItem(card, 0, 0)
            verify(pos.y > subtitle.mapToItem(card, 0, subtitle.height).y, "below the subtitle")
            verify(pos.x > 0 && pos.x + content.width < card.width, "inset in the card")
            verify(card.height > pos.y + content.height, "the card grows with its content")
        }

        function test_checklistRow_data() {
            return [{ tag: "passed", ok: true, mark: "OK", tone: AppTheme.green },
                    { tag: "failed", ok: false, mark: "A", tone: AppTheme.orange }]
        }

        function test_checklistRow(data) {
            const row = make("ChecklistRow", { width: 400, ok: data.ok, text: "Objet entre 12 et 90 caracteres" })
            const mark = named(row, "badgeMark")
            compare(mark.text, data.mark)
            compareColour(mark.color, data.tone, "mark")
            compare(named(row, "checkText").text, "Objet entre 12 et 90 caracteres")
        }

        function test_customPresetRow() {
            const row = make("CustomPresetRow", { width: 900, name: "Devis iPhone", sourceTitle: "Devis",
                subjectLine: "Votre devis Korvel est pret", updatedAt: new Date(2025, 2, 5, 14, 7), isActive: false })
            compare(named(row, "presetName").text, "Devis iPhone")
            compare(named(row, "presetUpdated").text, "Mis a jour le 05 mars · 14:07")
            // What each button does is checked through the window (tst_MainWindow).
            const buttons = ["loadButton", "overwriteButton", "removeButton"].map((name) => named(row, name))
            compare(buttons.map((button) => button.text), ["Charger", "Remplacer", "Supprimer"])
            for (const active of [false, true]) {
                row.isActive = active
                compare(named(row, "activeChip").visible, active)
                compare(buttons.map((button) => button.primary), [active, false, false])
            }
        }

        function test_pressedButtonsShrink() {
            const button = make("ToolbarButton", { x: 20, y: 20, text: "Exporter", primary: true })
            const clicks = spy(button, "clicked")
            const tile = make("PresetTileButton", { x: 20, y: 120, width: 200, text: "Devis", summary: "Estimation et delai", isActive: false })
            for (const [item, opacity, scale] of [[button, 0.9, 0.985], [tile, 1, 0.99]]) {
                compare([item.opacity, item.scale], [1, 1])
                mousePress(item)
                tryCompare(item, "opacity", opacity, 1000)
                tryCompare(item, "scale", scale, 1000)
                mouseRelease(item)
                tryCompare(item, "opacity", 1, 1000)
                tryCompare(item, "scale", 1, 1000)
            }
            compare(clicks.count, 1)
            button.enabled = false
            tryVerify(() => button.opacity < 0.6)
            mouseClick(button)
            compare(clicks.count, 1)

            tile.isActive = true
            compare(tile.background.gradient, AppTheme.accentFillGradient)
            tile.isActive = false
            compare(tile.background.gradient, null)
        }

        // Typing reports an edit; a new value from the owner replaces the text without one.
        function test_fieldsReportEdits_data() {
            return [{ tag: "text field", component: "LabeledTextField", value: "Lea", typed: "h", later: "Paul" },
                    { tag: "text editor", component: "LabeledTextEditor", value: "Bonjour", typed: "!", later: "Bonsoir" }]
        }

        function test_fieldsReportEdits(data) {
            const item = make(data.component, { width: 300, title: "Nom du client", text: data.value })
            const input = item.field || item.editor
            const edits = spy(item, "edited")
            item.text = data.later
            compare(input.text, data.later)
            compare(edits.count, 0, "a new bound value is not an edit")
            input.forceActiveFocus()
            input.cursorPosition = input.length
            keyClick(data.typed)
            compare(edits.count, 1)
            compare(edits.signalArguments[0][0], data.later + data.typed)
            item.text = data.value
            compare(input.text, data.value, "the owner's value still wins after an edit")
            compare(edits.count, 1)
        }

        function test_fieldLooks() {
            compare(make("LabeledTextField", { width: 300, title: "Nom du client" }).field.placeholderText, "Nom du client")
            compare(make("LabeledSecureField", { width: 300, title: "Code" }).field.echoMode, TextInput.Password)
            const editor = make("LabeledTextEditor", { width: 400, title: "Message principal", text: "Bonjour", minHeight: 150 })
            verify(editor.editor.height >= 150)
            editor.text = "ligne\n".repeat(30)
            tryVerify(() => editor.editor.height > 150, 2000, "grows with its text")
        }

        function test_brandingColorFieldSwatch() {
            const field = make("BrandingColorField", { width: 300, title: "Couleur principale", text: "#2F7DF6" })
            const swatch = named(field, "swatch")
            const brand = Qt.rgba(47 / 255, 125 / 255, 246 / 255, 1)
            compareColour(swatch.color, brand, "initial swatch")
            field.field.forceActiveFocus()
            field.field.cursorPosition = field.field.text.length
            keyClick("F")
            compare(field.field.text, "#2F7DF6F", "nothing is corrected")
            compare(swatch.color.a, 0, "transparent while unparsable")
            keyClick(Qt.Key_Backspace)
            compareColour(swatch.color, brand, "back to a colour")
            field.field.selectAll()
            for (const c of "#abc")
                keyClick(c)
            compareColour(swatch.color, Qt.rgba(0xaa / 255, 0xbb / 255, 0xcc / 255, 1), "short form")
        }
    }
}
