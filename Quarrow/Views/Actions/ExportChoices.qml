import QtQuick
import QtQuick.Layouts
import Tevrin

// The options of exported copies, and their effect on the first photo.
ColumnLayout {
    id: choices

    required property ExportForm form

    spacing: 12

    SettingRow {
        text: qsTr("长边")
        detail: qsTr("小的照片不会放大")

        PresetNumber {
            objectName: "longEdge"
            name: qsTr("长边")
            unit: qsTr("像素")
            least: Limits.FewestPixels
            most: Limits.MostPixels
            usual: 2048
            presets: [
                {
                    text: qsTr("原来的大小"),
                    value: 0
                },
                {
                    text: qsTr("1280 像素"),
                    value: 1280
                },
                {
                    text: qsTr("2048 像素"),
                    value: 2048
                },
                {
                    text: qsTr("4096 像素"),
                    value: 4096
                }
            ]
            number: choices.form.longEdge
            onEntered: number => choices.form.longEdge = number
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("文件大小")

        PresetNumber {
            objectName: "mostKilobytes"
            name: qsTr("文件大小上限")
            unit: "KB"
            least: Limits.FewestKilobytes
            most: Limits.MostKilobytes
            usual: 1000
            presets: [
                {
                    text: qsTr("不限"),
                    value: 0
                },
                {
                    text: qsTr("最多 500 KB"),
                    value: 500
                },
                {
                    text: qsTr("最多 1 MB"),
                    value: 1000
                },
                {
                    text: qsTr("最多 5 MB"),
                    value: 5000
                }
            ]
            number: choices.form.mostKilobytes
            onEntered: number => choices.form.mostKilobytes = number
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("格式")
        detail: choices.form.canWriteHEIC ? "" : qsTr("这台电脑不能写 HEIC，会写成 JPEG")

        ComboBox {
            objectName: "format"
            name: qsTr("格式")
            model: [
                {
                    text: qsTr("原来的格式"),
                    value: "keep"
                },
                {
                    text: "JPEG",
                    value: "jpeg"
                },
                {
                    text: choices.form.canWriteHEIC ? "HEIC" : qsTr("HEIC（写成 JPEG）"),
                    value: "heic"
                },
                {
                    text: "PNG",
                    value: "png"
                }
            ]
            value: choices.form.format
            onChosen: format => choices.form.format = format
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("画质")
        enabled: choices.form.format !== "png"
        detail: enabled ? "" : qsTr("PNG 总是无损")

        Slider {
            name: qsTr("画质")
            valueText: qsTr("%1%").arg(Math.round(value * 100))
            enabled: choices.form.format !== "png"
            from: Limits.LowestQuality / 100
            to: 1
            stepSize: 0.05
            value: choices.form.quality
            onMoved: choices.form.quality = value
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("拍摄信息")
        detail: qsTr("时间、相机、位置")

        ComboBox {
            objectName: "metadata"
            name: qsTr("拍摄信息")
            model: [
                {
                    text: qsTr("全部保留"),
                    value: ExportForm.KeepMetadata
                },
                {
                    text: qsTr("去掉位置"),
                    value: ExportForm.WithoutLocation
                },
                {
                    text: qsTr("全部去掉"),
                    value: ExportForm.WithoutMetadata
                }
            ]
            value: choices.form.metadata
            onChosen: metadata => choices.form.metadata = metadata
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("导出到")
        detail: choices.form.folder

        PushButton {
            visible: !choices.form.usesReservedFolder
            text: qsTr("用默认的")
            Accessible.name: qsTr("导出到默认的文件夹")
            onClicked: choices.form.useReservedFolder()
        }
        PushButton {
            text: qsTr("更改…")
            Accessible.name: qsTr("更改导出的文件夹")
            onClicked: chooser.open()
        }
    }
    ExportExample {
        form: choices.form
        Layout.fillWidth: true
        Layout.topMargin: 4
    }
    FolderPicker {
        id: chooser

        title: qsTr("导出到哪里")
        onAccepted: choices.form.chooseFolder(selectedFolder)
    }
}
