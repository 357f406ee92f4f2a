import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    title: qsTr("大小和数量")

    SettingRow {
        text: qsTr("单个文件最大")
        detail: Settings.uploadLimitMeaning

        SpinBox {
            objectName: "uploadLimit"
            name: qsTr("单个文件最大，MB")
            detail: Settings.uploadLimitMeaning
            unit: qsTr("MB")
            from: 1
            to: Limits.MostMegabytes
            step: 50
            number: Settings.uploadLimit
            onEntered: number => Settings.uploadLimit = number
        }
    }
    Separator {}
    ToggleRow {
        objectName: "limitsFolder"
        text: qsTr("限制文件夹里的照片数量")
        detail: Settings.folderLimitMeaning
        checked: Settings.limitsFolder
        Layout.fillWidth: true
        onToggled: Settings.limitsFolder = checked
    }
    SettingRow {
        visible: Settings.limitsFolder
        text: qsTr("最多")
        detail: qsTr("照片和视频一起算，只算新照片所在的文件夹")

        SpinBox {
            objectName: "folderLimit"
            name: qsTr("文件夹里最多几张照片")
            detail: Settings.folderLimitMeaning
            unit: qsTr("张")
            from: 1
            to: Limits.MostPhotos
            step: 50
            number: Settings.folderLimit
            onEntered: number => Settings.folderLimit = number
        }
    }
    ToggleRow {
        objectName: "autoPrune"
        visible: Settings.limitsFolder
        text: qsTr("满了就清掉最旧的")
        detail: checked ? qsTr("移到废纸篓，需要时可以找回") : qsTr("关着时不动旧照片，满了就不收新的")
        checked: Settings.autoPrune
        Layout.fillWidth: true
        onToggled: Settings.autoPrune = checked
    }
}
