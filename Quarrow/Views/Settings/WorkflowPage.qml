import QtQuick
import QtQuick.Layouts
import Tevrin

ScrollPage {
    id: page

    readonly property WorkflowForm workflow: Settings.workflow

    widest: 640
    spacing: 24

    Label {
        text: qsTr("手机传来照片以后，这台电脑还要做什么。每一项都可以马上试一下，用的是最近收到的照片。")
        secondary: true
        Layout.leftMargin: 4
        Layout.rightMargin: 4
        Layout.fillWidth: true
    }
    Section {
        title: qsTr("打开和复制")

        TryRow {
            objectName: "copy"
            action: WorkflowForm.Copy
            text: qsTr("复制到剪贴板")
            detail: qsTr("收到就能粘贴，一次来几张时是最后一张")
            checked: page.workflow.copyToClipboard
            Layout.fillWidth: true
            onToggled: checked => page.workflow.copyToClipboard = checked
        }
        Separator {}
        ApplicationRow {
            Layout.fillWidth: true
            onChooseAsked: chooser.open()
        }
    }
    Section {
        title: qsTr("提醒")

        TryRow {
            objectName: "sound"
            action: WorkflowForm.Sound
            text: qsTr("响一声")
            detail: qsTr("轻轻的一声，一次来很多张时不会响个没完")
            checked: page.workflow.playSound
            Layout.fillWidth: true
            onToggled: checked => page.workflow.playSound = checked
        }
        Separator {}
        TryRow {
            objectName: "notify"
            action: WorkflowForm.Note
            text: qsTr("显示通知")
            detail: qsTr("每张照片一条，带缩略图，点一下就打开")
            checked: page.workflow.notify
            Layout.fillWidth: true
            onToggled: checked => page.workflow.notify = checked
        }
    }

    ApplicationSheet {
        id: chooser

        objectName: "applications"
    }
}
