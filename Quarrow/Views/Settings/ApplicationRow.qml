import QtQuick
import QtQuick.Layouts
import Tevrin

// The application that opens received photos.
ColumnLayout {
    id: row

    readonly property WorkflowForm workflow: Settings.workflow

    signal chooseAsked

    spacing: 8

    SettingRow {
        text: qsTr("用应用打开")
        detail: row.workflow.applicationName ? qsTr("每张照片都用“%1”打开").arg(row.workflow.applicationName) : qsTr("不打开，照片只存起来")

        IconButton {
            objectName: "noApplication"
            visible: row.workflow.applicationName
            text: qsTr("不再用应用打开")
            icon.name: "close"
            onClicked: row.workflow.chooseNoApplication()
        }
        PushButton {
            objectName: "chooseApplication"
            text: row.workflow.applicationName ? qsTr("更换…") : qsTr("选择…")
            Accessible.name: qsTr("选择打开照片的应用")
            onClicked: row.chooseAsked()
        }
        TryButton {
            visible: row.workflow.applicationName
            attempt: WorkflowForm.Open
            what: qsTr("用应用打开")
        }
    }
    Label {
        visible: text
        text: row.workflow.applicationError
        color: Theme.danger
        font.pixelSize: Theme.caption
        Layout.fillWidth: true
        Accessible.role: Accessible.AlertMessage
    }
    TryResult {
        action: WorkflowForm.Open
        Layout.fillWidth: true
    }
}
