import QtQuick
import Velino

// The small title above a form field.
Text {
    font.family: AppTheme.fontFamily
    font.pixelSize: 12
    font.weight: Font.DemiBold
    color: AppTheme.muted
    elide: Text.ElideRight
}
