import QtQuick
import Velino

// A 12-point medium line in the muted colour, wrapping.
Text {
    font.family: AppTheme.fontFamily
    font.pixelSize: 12
    font.weight: Font.Medium
    color: AppTheme.muted
    wrapMode: Text.Wrap
}
