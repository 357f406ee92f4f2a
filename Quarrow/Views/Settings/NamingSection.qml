import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    title: qsTr("文件名")

    SettingRow {
        text: qsTr("命名方式")
        detail: Settings.numbered ? qsTr("前缀加连续的号码，删掉照片也不会重号") : qsTr("收到照片的日期和时间")

        ComboBox {
            objectName: "naming"
            name: qsTr("命名方式")
            model: [{text: qsTr("按时间"), value: false}, {text: qsTr("按序号"), value: true}]
            value: Settings.numbered
            onChosen: numbered => Settings.numbered = numbered
        }
    }
    GridLayout {
        id: grid

        visible: Settings.numbered
        columns: width < 440 ? 2 : 4
        columnSpacing: 12
        rowSpacing: 12
        Layout.fillWidth: true

        LabelledField {
            text: qsTr("前缀")
            Layout.preferredWidth: 160

            TextField {
                objectName: "prefix"
                name: qsTr("前缀")
                placeholder: qsTr("没有前缀")
                value: Settings.prefix
                error: Settings.prefixError
                Layout.fillWidth: true
                onTaken: text => Settings.prefix = text
            }
        }
        LabelledField {
            text: qsTr("分隔")
            Layout.preferredWidth: 80

            TextField {
                objectName: "separator"
                name: qsTr("前缀和号码之间的分隔")
                placeholder: qsTr("没有")
                value: Settings.separator
                error: Settings.separatorError
                Layout.fillWidth: true
                onTaken: text => Settings.separator = text
            }
        }
        LabelledField {
            text: qsTr("至少几位")
            Layout.preferredWidth: 80

            SpinBox {
                objectName: "digits"
                name: qsTr("号码至少几位")
                from: Limits.FewestDigits
                to: Limits.MostDigits
                number: Settings.digits
                Layout.fillWidth: true
                onEntered: number => Settings.digits = number
            }
        }
        LabelledField {
            text: qsTr("从几开始")
            Layout.preferredWidth: 100

            SpinBox {
                objectName: "start"
                name: qsTr("号码从几开始")
                number: Settings.start
                Layout.fillWidth: true
                onEntered: number => Settings.start = number
            }
        }
    }
    Separator {}
    EffectLine {
        objectName: "nextName"
        text: qsTr("下一张")
        what: Settings.nextName
        Layout.fillWidth: true
    }
}
