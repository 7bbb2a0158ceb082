import QtQuick
import QtTest
import Velino

Item {
    id: scene
    width: 1000
    height: 800

    TestCase {
        id: testCase
        name: "Components"
        when: windowShown

        function make(qml, properties) {
            return Object.assign(
                createTemporaryQmlObject("import QtQuick; import Velino; " + qml + " { }", scene),
                properties)
        }

        function named(item, name) { return findChild(item, name) }

        function pixel(item, x, y) {
            waitForRendering(item)
            return grabImage(item).pixel(x, y)
        }

        // Colour `c` (with its alpha) laid over the opaque `under`.
        function over(c, under) {
            return Qt.rgba(c.r * c.a + under.r * (1 - c.a), c.g * c.a + under.g * (1 - c.a),
                           c.b * c.a + under.b * (1 - c.a), 1)
        }

        // Text at 4.5:1, boundaries and focus ring at 3:1, on cards and under the header's veil.
        function test_readableColours() {
            const t = AppTheme, white = Qt.rgba(1, 1, 1, 1)
            const card = over(Qt.rgba(0.065, 0.085, 0.135, 0.96), t.backgroundBase)
            const header = over(Qt.rgba(0, 0, 0, 0.26), t.backgroundBase)
            const field = over(Qt.rgba(1, 1, 1, 0.065), card)
            const pairs = [["white on the blue fill", white, t.accentFill, 4.5],
                           ["white on the violet fill", white, t.accentSoftFill, 4.5],
                           ["placeholder", over(t.placeholder, field), field, 4.5],
                           ["muted", over(t.muted, card), card, 4.5],
                           ["link", t.link, card, 4.5],
                           ["destructive", t.destructive, over(t.buttonSurface, card), 4.5],
                           ["field boundary", over(t.fieldLine, card), card, 3],
                           ["focus ring", t.focusRing, card, 3],
                           ["focus ring on the header", t.focusRing, header, 3]]
            for (const tint of [t.cyan, t.accentFill, t.accentSoftFill]) {
                const chip = over(t.withOpacity(tint, 0.92), header)
                pairs.push(["chip " + tint, t.textOn(chip), chip, 4.5])
            }
            for (const [tag, fg, bg, min] of pairs)
                verify(t.contrast(fg, bg) >= min, tag + ": " + t.contrast(fg, bg).toFixed(2) + ":1")
        }

        // On the white test window: the rounded corners leave it visible; the fills show inside.
        function test_drawnSurfaces() {
            const white = (p) => p.r > 0.9 && p.g > 0.9
            const surface = make("Surface", { width: 300, height: 120, radius: 20,
                                              gradient: AppTheme.accentGradient })
            const first = pixel(surface, 30, 30)
            verify(first.b > first.r && pixel(surface, 270, 90).r > first.r + 0.1,
                   "accent to accentSoft")
            verify(white(pixel(surface, 1, 1)), "rounded surface corner")
            const chip = make("StatusChip", { text: "Charge", tint: AppTheme.accent })
            const centre = pixel(chip, Math.floor(chip.width / 2), 2)
            verify(centre.b > centre.r, "tinted chip, got " + centre)

            const logo = make("BundleLogoView",
                              { resourceName: "NoSuchLogo", size: 68, cornerRadius: 20 })
            verify(!logo.showsImage && named(logo, "logoPlaceholder").visible)
            verify(white(pixel(logo, 0, 0)), "rounded logo corner")
            const inside = pixel(logo, 34, 34)
            verify(inside.r < 0.5 && inside.b > 0.9, "accent placeholder, got " + inside)
            const shown = make("BundleLogoView",
                               { resourceName: "VelinoLogo", size: 62, cornerRadius: 18 })
            tryVerify(() => shown.showsImage)
            compare([shown.width, named(shown, "logoImage").visible,
                     named(shown, "logoPlaceholder").visible], [62, true, false])
        }

        function test_checklistRow() {
            for (const [ok, mark, tone] of [[true, "OK", AppTheme.green],
                                            [false, "A", AppTheme.orange]]) {
                const row = make("ChecklistRow",
                                 { width: 400, ok: ok, text: "Objet entre 12 et 90 caracteres" })
                compare([named(row, "badgeMark").text, named(row, "checkText").text,
                         String(named(row, "badgeMark").color)],
                        [mark, "Objet entre 12 et 90 caracteres", String(tone)])
            }
        }

        // A card as narrow as at 1320 px: words wrap whole; a word too wide shrinks the value
        // instead.
        function test_summaryCardKeepsWordsWhole() {
            for (const [value, lines, full] of [["Thunderbird", 1, false],
                                                ["Pret a envoyer", 2, true],
                                                ["4", 1, true]]) {
                const text = named(make("SummaryCard", { width: 134, height: 140, title: "Etat",
                                                         value: value, caption: "x" }),
                                   "summaryValue")
                waitForItemPolished(text.parent)
                compare([text.lineCount, text.font.pixelSize === 22], [lines, full], value)
            }
        }

        // The active state and what each button does: through the window (tst_MainWindow).
        function test_customPresetRow() {
            const row = make("CustomPresetRow", {
                width: 900, name: "Devis iPhone", sourceTitle: "Devis",
                subjectLine: "Votre devis Korvel est pret", updatedAt: new Date(2025, 2, 5, 14, 7),
                isActive: false })
            compare(["presetName", "presetUpdated", "loadButton", "overwriteButton", "removeButton"]
                    .map((name) => named(row, name).text),
                    ["Devis iPhone", "Mis a jour le 05 mars · 14:07",
                     "Charger", "Remplacer", "Supprimer"])
            verify(!named(row, "activeChip").visible && !named(row, "loadButton").primary)
        }

        // Typing reports an edit; a new value from the owner replaces the text without one.
        function test_fieldsReportEdits() {
            for (const component of ["LabeledTextField", "LabeledTextEditor"]) {
                const item = make(component, { width: 300, title: "Nom du client", text: "Lea" })
                const input = item.field || item.editor
                const edits = Object.assign(
                    createTemporaryQmlObject("import QtTest; SignalSpy { }", testCase),
                    { target: item, signalName: "edited" })
                item.text = "Paul"
                compare([input.text, edits.count], ["Paul", 0],
                        component + ": a new bound value is not an edit")
                input.forceActiveFocus()
                input.cursorPosition = input.length
                keyClick("h")
                compare([edits.count, edits.signalArguments[0][0]], [1, "Paulh"], component)
                item.text = "Lea"
                compare([input.text, edits.count], ["Lea", 1],
                        component + ": the owner's value still wins after an edit")
            }
        }

        function test_brandingColorFieldSwatch() {
            const field = make("BrandingColorField",
                               { width: 300, title: "Couleur principale", text: "#2F7DF6" })
            const swatch = named(field, "swatch")
            field.field.forceActiveFocus()
            field.field.cursorPosition = field.field.text.length
            keyClick("F")
            compare([field.field.text, swatch.color.a], ["#2F7DF6F", 0],
                    "nothing corrected, transparent while unparsable")
            keyClick(Qt.Key_Backspace)
            compare(String(swatch.color), "#2f7df6", "back to a colour")
        }
    }
}
