import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// The export dialog: options, progress, and result.
Sheet {
    id: sheet

    readonly property ExportForm form: Actions.exporting
    readonly property bool chooses: form.stage === ExportForm.Choosing
    readonly property bool works: form.stage === ExportForm.Exporting

    objectName: "exportSheet"
    title: form.stage === ExportForm.Finished ? form.result : qsTr("导出 %1 项").arg(form.count)
    detail: chooses ? qsTr("导出的是副本，原来的照片不动。") : ""
    widest: 520
    closePolicy: works ? T.Popup.NoAutoClose : T.Popup.CloseOnEscape
    onAboutToShow: form.begin()
    onChoosesChanged: done.forceActiveFocus(Qt.TabFocusReason)

    ExportChoices {
        visible: sheet.chooses
        form: sheet.form
        Layout.fillWidth: true
    }
    WorkProgress {
        visible: sheet.works
        verb: qsTr("正在导出")
        Layout.fillWidth: true
    }
    Label {
        visible: text && sheet.form.stage === ExportForm.Finished
        text: sheet.form.remark
        Layout.fillWidth: true
    }
    FileLines {
        visible: lines.length > 0 && sheet.form.stage === ExportForm.Finished
        lines: sheet.form.failures
        Layout.fillWidth: true
    }
    RowLayout {
        visible: sheet.form.stage === ExportForm.Finished && sheet.form.hasCopies
        spacing: 8

        Icon {
            name: "folder"
            color: Theme.secondaryText
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            text: sheet.form.folder
            secondary: true
            wrapMode: Text.WrapAnywhere
            Layout.fillWidth: true
        }
    }

    buttons: [
        Item {
            Layout.fillWidth: true
        },
        PushButton {
            objectName: "showCopies"
            visible: sheet.form.stage === ExportForm.Finished && sheet.form.hasCopies
            text: qsTr("在文件夹中显示")
            onClicked: sheet.form.showCopies()
        },
        PushButton {
            objectName: "cancel"
            visible: sheet.form.stage !== ExportForm.Finished
            text: sheet.works ? qsTr("停止") : qsTr("取消")
            enabled: !sheet.works || !Actions.jobs.stopping
            onClicked: {
                if (sheet.works)
                    Actions.jobs.stop();
                else
                    sheet.close();
            }
        },
        PushButton {
            id: done

            objectName: "apply"
            text: sheet.form.stage === ExportForm.Finished ? qsTr("完成") : qsTr("导出")
            kind: PushButton.Primary
            enabled: !sheet.works
            onClicked: {
                if (sheet.chooses)
                    sheet.form.apply();
                else
                    sheet.close();
            }
        }
    ]
}
