import QtQuick
import QtQuick.Layouts

// The form's two-column grid: two flexible columns of equal width (at least 10 wide),
// 14 apart, rows 14 apart; fields flow two per row, left to right, and an odd last field
// sits alone in the left column.
GridLayout {
    Layout.fillWidth: true
    columns: 2
    columnSpacing: 14
    rowSpacing: 14
}
