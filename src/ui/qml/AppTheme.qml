pragma Singleton

import QtQuick
import Velino

// The window's palette: light text on near-black blue surfaces, with the blue accent and
// the violet accentSoft as the saturated colours besides cyan. Gradients are drawn from
// the top-leading to the bottom-trailing corner (see Surface), stops evenly spaced.
QtObject {
    id: theme

    readonly property color accent: Qt.rgba(0.18, 0.49, 0.96, 1)
    readonly property color accentSoft: Qt.rgba(0.48, 0.36, 1.0, 1)
    readonly property color cyan: Qt.rgba(0.34, 0.76, 1.0, 1)
    readonly property color text: Qt.rgba(1, 1, 1, 0.95)
    readonly property color muted: Qt.rgba(1, 1, 1, 0.68)
    readonly property color line: Qt.rgba(1, 1, 1, 0.08)
    readonly property color inputLine: Qt.rgba(1, 1, 1, 0.12)
    readonly property color buttonSurface: Qt.rgba(1, 1, 1, 0.08)
    readonly property color shadow: Qt.rgba(0, 0, 0, 0.24)

    // Dark-appearance system colours used by the checklist, tiles and fields.
    readonly property color green: Qt.rgba(0.19, 0.82, 0.35, 1)
    readonly property color orange: Qt.rgba(1.0, 0.62, 0.04, 1)
    readonly property color secondaryLabel: Qt.rgba(1, 1, 1, 0.55)
    // Brighter than the dark appearance's 0.25: placeholders must read at 4.5:1.
    readonly property color placeholder: Qt.rgba(1, 1, 1, 0.5)
    readonly property color selection: Qt.rgba(0.18, 0.49, 0.96, 0.55)
    // The label of a destructive button (system red, dark appearance).
    // Lightened from the system red so that the label reads at 4.5:1 on the button.
    readonly property color destructive: Qt.rgba(1.0, 0.42, 0.38, 1)

    // Readability (WCAG AA): text at 4.5:1 against what it sits on, field boundaries and
    // the focus ring at 3:1. Where the palette's own colours fall short, these stand in.
    // Fills that carry white text: the accent and accentSoft a little deeper.
    readonly property color accentFill: Qt.rgba(0.13, 0.42, 0.90, 1)
    readonly property color accentSoftFill: Qt.rgba(0.44, 0.32, 0.96, 1)
    // Field boundaries (the palette's inputLine, white 0.12, is 1.8:1 on a card).
    readonly property color fieldLine: Qt.rgba(1, 1, 1, 0.34)
    // Links: accentSoft lightened.
    readonly property color link: Qt.rgba(0.66, 0.6, 1.0, 1)
    // Text on a light tint (the cyan chip).
    readonly property color darkText: Qt.rgba(0.02, 0.07, 0.12, 1)
    // The keyboard focus ring.
    readonly property color focusRing: Qt.rgba(0.36, 0.62, 1.0, 1)

    // The opaque middle of `background`, for whatever is drawn before the gradient.
    readonly property color backgroundBase: Qt.rgba(0.03, 0.05, 0.10, 1)

    readonly property Gradient background: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.02, 0.03, 0.06, 1) }
        GradientStop { position: 0.5; color: Qt.rgba(0.03, 0.05, 0.10, 1) }
        GradientStop { position: 1.0; color: Qt.rgba(0.02, 0.03, 0.06, 1) }
    }
    readonly property Gradient panelBackground: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.05, 0.07, 0.11, 0.94) }
        GradientStop { position: 1.0; color: Qt.rgba(0.03, 0.04, 0.08, 0.94) }
    }
    // The panel's colours made opaque, for modal surfaces: nothing behind a dialog shows
    // through it.
    readonly property Gradient dialogSurface: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.05, 0.07, 0.11, 1) }
        GradientStop { position: 1.0; color: Qt.rgba(0.03, 0.04, 0.08, 1) }
    }
    readonly property Gradient previewBackground: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.04, 0.06, 0.10, 0.96) }
        GradientStop { position: 1.0; color: Qt.rgba(0.03, 0.04, 0.08, 0.96) }
    }
    readonly property Gradient cardSurface: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.08, 0.10, 0.16, 0.96) }
        GradientStop { position: 1.0; color: Qt.rgba(0.05, 0.07, 0.11, 0.96) }
    }
    readonly property Gradient previewSurface: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.07, 0.09, 0.14, 0.98) }
        GradientStop { position: 1.0; color: Qt.rgba(0.04, 0.06, 0.10, 0.98) }
    }
    readonly property Gradient inputSurface: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(1, 1, 1, 0.08) }
        GradientStop { position: 1.0; color: Qt.rgba(1, 1, 1, 0.05) }
    }
    readonly property Gradient headerSurface: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0, 0, 0, 0.34) }
        GradientStop { position: 1.0; color: Qt.rgba(0, 0, 0, 0.18) }
    }
    // accent → accentSoft: primary buttons, the active preset tile, the logo placeholder.
    readonly property Gradient accentGradient: Gradient {
        GradientStop { position: 0.0; color: Qt.rgba(0.18, 0.49, 0.96, 1) }
        GradientStop { position: 1.0; color: Qt.rgba(0.48, 0.36, 1.0, 1) }
    }
    // The same, deep enough for white text at 4.5:1 (primary buttons, the active tile).
    readonly property Gradient accentFillGradient: Gradient {
        GradientStop { position: 0.0; color: theme.accentFill }
        GradientStop { position: 1.0; color: theme.accentSoftFill }
    }

    // The rounded system font of the design is not on Linux: Inter when installed, else
    // the default sans-serif.
    readonly property string fontFamily: UiHelpers.fontFamily

    // WCAG contrast ratio of two opaque colours.
    function contrast(a, b) {
        const channel = (c) => c <= 0.04045 ? c / 12.92 : Math.pow((c + 0.055) / 1.055, 2.4)
        const luminance = (c) => 0.2126 * channel(c.r) + 0.7152 * channel(c.g) + 0.0722 * channel(c.b)
        const la = luminance(a)
        const lb = luminance(b)
        return (Math.max(la, lb) + 0.05) / (Math.min(la, lb) + 0.05)
    }
    // The text colour that reads best on an opaque fill: white, or darkText.
    function textOn(fill) {
        return contrast(Qt.rgba(1, 1, 1, 1), fill) >= 4.5 ? Qt.rgba(1, 1, 1, 1) : darkText
    }

    // Colour with its opacity multiplied, as a view's opacity modifier does.
    function withOpacity(c, factor) {
        return Qt.rgba(c.r, c.g, c.b, c.a * factor)
    }
}
