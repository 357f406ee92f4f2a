import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    id: section

    signal resetAsked

    title: qsTr("手机")

    GalleryToggle {
        Layout.fillWidth: true
    }
    SettingRow {
        visible: Shell.galleryEnabled
        text: qsTr("给手机看的文件夹")
        detail: Settings.galleryFolderMeaning

        ComboBox {
            objectName: "galleryFolder"
            name: qsTr("给手机看的文件夹")
            implicitWidth: 200
            model: Settings.galleryFolders
            value: Settings.galleryFolder
            onChosen: folder => Settings.galleryFolder = folder
        }
    }
    Separator {}
    PortRow {}
    Separator {
        visible: address.visible
    }
    SettingRow {
        id: address

        visible: picker.model.length > 0
        text: qsTr("二维码使用的地址")
        detail: qsTr("这台电脑连着几个网络，选手机也在的那一个")

        AddressPicker {
            id: picker

            implicitWidth: 220
        }
    }
    Separator {}
    ColumnLayout {
        spacing: 8

        SettingRow {
            text: qsTr("快捷指令上传地址")
            detail: qsTr("填进 iPhone 的快捷指令，不扫码也能传。用法见帮助。")
        }
        UploadAddress {
            Layout.fillWidth: true
        }
    }
    Separator {}
    SettingRow {
        text: qsTr("访问密钥")
        detail: qsTr("不想让扫过码的人再传照片时，换一把新的。")

        PushButton {
            objectName: "resetKey"
            text: qsTr("重置…")
            Accessible.name: qsTr("重置访问密钥")
            onClicked: section.resetAsked()
        }
    }
}
