import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// The batch rename dialog: the input, and the new name of each photo.
Sheet {
    id: sheet

    readonly property RenameForm form: Actions.renaming

    objectName: "renameSheet"
    title: qsTr("重命名 %1 项").arg(form.count)
    detail: qsTr("按照片墙上的顺序编号，扩展名不变。")
    widest: 520
    first: prefix
    closePolicy: form.busy ? T.Popup.NoAutoClose : T.Popup.CloseOnEscape
    onAboutToShow: form.begin()

    Connections {
        target: sheet.form

        function onFinished(renamed) {
            if (renamed)
                sheet.close();
            else
                prefix.forceActiveFocus();
        }
    }
    RowLayout {
        spacing: 12
        enabled: !sheet.form.busy
        Keys.onReturnPressed: sheet.form.apply()
        Keys.onEnterPressed: sheet.form.apply()

        FieldColumn {
            label: qsTr("开头")
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignTop

            TextField {
                id: prefix

                objectName: "prefix"
                name: qsTr("名称的开头")
                placeholder: qsTr("例如 海边-")
                value: sheet.form.prefix
                error: sheet.form.problem
                pause: 0
                maximumLength: 200
                onTaken: text => sheet.form.prefix = text
                Layout.fillWidth: true
            }
        }
        FieldColumn {
            label: qsTr("位数")
            Layout.fillWidth: false
            Layout.alignment: Qt.AlignTop

            SpinBox {
                objectName: "digits"
                name: qsTr("编号的位数")
                implicitWidth: 72
                from: Limits.FewestDigits
                to: Limits.MostDigits
                number: sheet.form.digits
                onEntered: number => sheet.form.digits = number
            }
        }
        FieldColumn {
            label: qsTr("从几开始")
            Layout.fillWidth: false
            Layout.alignment: Qt.AlignTop

            SpinBox {
                objectName: "start"
                name: qsTr("第一个编号")
                implicitWidth: 112
                number: sheet.form.start
                onEntered: number => sheet.form.start = number
            }
        }
    }
    NamePreview {
        opacity: sheet.form.problem ? 0.45 : 1
        model: sheet.form.preview
        Layout.fillWidth: true
    }
    WorkProgress {
        visible: sheet.form.busy
        verb: qsTr("正在重命名")
        Layout.fillWidth: true
    }

    buttons: [
        Item {
            Layout.fillWidth: true
        },
        PushButton {
            objectName: "cancel"
            text: sheet.form.busy ? qsTr("停止") : qsTr("取消")
            enabled: !sheet.form.busy || !Actions.jobs.stopping
            onClicked: {
                if (sheet.form.busy)
                    Actions.jobs.stop();
                else
                    sheet.close();
            }
        },
        PushButton {
            objectName: "apply"
            text: qsTr("重命名")
            kind: PushButton.Primary
            enabled: sheet.form.ready && !sheet.form.busy
            onClicked: sheet.form.apply()
        }
    ]
}
