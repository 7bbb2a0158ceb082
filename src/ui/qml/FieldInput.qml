import QtQuick
import QtQuick.Controls.Basic
import Velino

// The borderless single-line input used inside the form's boxes: no background of its
// own, theme text colours, the placeholder in the placeholder colour. Without the focus
// it shows the start of a text too long for it.
TextField {
    font.family: AppTheme.fontFamily
    font.pixelSize: 13
    color: AppTheme.text
    placeholderTextColor: AppTheme.placeholder
    selectionColor: AppTheme.selection
    selectedTextColor: "white"
    verticalAlignment: TextInput.AlignVCenter
    leftPadding: 0
    rightPadding: 0
    topPadding: 0
    bottomPadding: 0
    selectByMouse: true
    background: null
    // Every form field's placeholder is its visible label: the name a screen reader reads.
    Accessible.name: placeholderText
    // TextInput's default of 32767 would cut a longer saved text at the first edit.
    maximumLength: 2147483647

    onTextChanged: if (!activeFocus) cursorPosition = 0
    onActiveFocusChanged: if (!activeFocus) cursorPosition = 0
}
