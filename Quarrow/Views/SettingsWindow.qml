import QtQuick
import QtQuick.Layouts
import Tevrin

AppWindow {
    id: window

    title: qsTr("设置")
    width: 600
    height: 740
    minimumWidth: 380
    minimumHeight: 360

    ScrollPage {
        anchors.fill: parent
        widest: 640
        spacing: 24

        ErrorNotice {
            Layout.fillWidth: true
        }
        Section {
            title: qsTr("保存")

            SettingRow {
                text: qsTr("保存目录")
                detail: Phrases.folder(Server.saveFolder)

                PushButton {
                    text: qsTr("打开")
                    Accessible.name: qsTr("打开保存目录")
                    onClicked: Shell.openSaveFolder()
                }
                PushButton {
                    text: qsTr("更改…")
                    Accessible.name: qsTr("更改保存目录")
                    onClicked: chooser.open()
                }
            }
        }
        Section {
            title: qsTr("手机")

            GalleryToggle {
                Layout.fillWidth: true
            }
            Rule {}
            PortRow {}
            Rule {}
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
            Rule {}
            SettingRow {
                text: qsTr("访问密钥")
                detail: qsTr("不想让扫过码的人再传照片时，换一把新的。")

                PushButton {
                    objectName: "resetKey"
                    text: qsTr("重置…")
                    Accessible.name: qsTr("重置访问密钥")
                    onClicked: confirmation.open()
                }
            }
        }
        Section {
            title: qsTr("这台电脑")

            ToggleRow {
                text: qsTr("登录时启动")
                detail: qsTr("在后台等着收照片，不打开窗口")
                checked: Shell.startsAtLogin
                Layout.fillWidth: true
                onToggled: Shell.startsAtLogin = checked
            }
            Rule {}
            SettingRow {
                text: qsTr("全局快捷键")
                detail: qsTr("随时打开二维码。⌃ Ctrl　⌥ Alt　⇧ Shift　⌘ Super")

                Choice {
                    objectName: "hotKey"
                    name: qsTr("全局快捷键")
                    model: Phrases.hotKeyChoices(Shell.hotKeyPresets)
                    value: Shell.hotKeyPreset
                    onChosen: preset => Shell.hotKeyPreset = preset
                }
            }
        }
    }
    FolderChooser {
        id: chooser
    }
    ConfirmationSheet {
        id: confirmation

        objectName: "resetConfirmation"
        title: qsTr("重置访问密钥？")
        text: Shell.resetKeyWarning
        confirmText: qsTr("重置")
        onAccepted: Shell.resetKey()
    }
}
