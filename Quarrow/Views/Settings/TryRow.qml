import QtQuick
import QtQuick.Layouts
import Tevrin

// An action that can be enabled and tried, with the result below it.
ColumnLayout {
    id: row

    property alias text: toggle.text
    property alias detail: toggle.detail
    property alias checked: toggle.checked
    property int action

    signal toggled(bool checked)

    spacing: 8

    RowLayout {
        spacing: 16

        ToggleRow {
            id: toggle

            Layout.fillWidth: true
            onToggled: row.toggled(checked)
        }
        TryButton {
            attempt: row.action
            what: row.text
        }
    }
    TryResult {
        action: row.action
        Layout.fillWidth: true
    }
}
