import QtQuick
import Velino

// LabeledTextField whose characters are masked.
LabeledTextField {
    secure: true
}
