import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    title: qsTr("这台电脑")

    ToggleRow {
        objectName: "startsAtLogin"
        text: qsTr("登录时启动")
        detail: qsTr("在后台等着收照片，不打开窗口")
        checked: Shell.startsAtLogin
        Layout.fillWidth: true
        onToggled: Shell.startsAtLogin = checked
    }
    Separator {}
    SettingRow {
        text: qsTr("全局快捷键")
        detail: qsTr("随时打开二维码。⌃ Ctrl　⌥ Alt　⇧ Shift　⌘ Super")

        ComboBox {
            objectName: "hotKey"
            name: qsTr("全局快捷键")
            model: Phrases.hotKeyChoices(Shell.hotKeyPresets)
            value: Shell.hotKeyPreset
            onChosen: preset => Shell.hotKeyPreset = preset
        }
    }
}
