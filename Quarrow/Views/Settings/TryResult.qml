import QtQuick
import QtQuick.Layouts
import Tevrin

// The result of the last trial of an action.
RowLayout {
    id: outcome

    property int action
    readonly property string words: Settings.workflow.outcomes[action]
    readonly property bool failed: action === WorkflowForm.Open && Settings.workflow.openingFailed

    visible: words
    spacing: 8

    Icon {
        name: outcome.failed ? "alert" : "check"
        color: outcome.failed ? Theme.danger : Theme.success
        Layout.preferredWidth: 16
        Layout.preferredHeight: 16
        Layout.alignment: Qt.AlignTop
    }
    Label {
        text: outcome.words
        color: outcome.failed ? Theme.danger : Theme.success
        font.pixelSize: Theme.caption
        Layout.fillWidth: true
        Accessible.role: Accessible.AlertMessage
    }
}
