import QtQuick
import QtQuick.Layouts
import Tevrin

Section {
    title: qsTr("存到哪里")

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
    LinkButton {
        objectName: "defaultFolder"
        visible: Settings.hasChosenFolder
        text: qsTr("改回默认的保存目录")
        onClicked: Settings.useDefaultFolder()
    }
    Separator {}
    ToggleRow {
        objectName: "dateSubfolders"
        text: qsTr("每天一个文件夹")
        detail: qsTr("文件夹以日期命名，例如 %1").arg(new Date().toLocaleDateString(Qt.locale("C"), "yyyy-MM-dd"))
        checked: Settings.dateSubfolders
        Layout.fillWidth: true
        onToggled: Settings.dateSubfolders = checked
    }
    Separator {}
    SettingRow {
        text: qsTr("活动文件夹")
        detail: qsTr("新照片另放一处，比如一次聚会；不填就不分")

        TextField {
            objectName: "sessionSubfolder"
            name: qsTr("活动文件夹")
            placeholder: qsTr("例如：七月旅行")
            value: Settings.sessionSubfolder
            error: Settings.sessionError
            Layout.fillWidth: true
            onTaken: text => Settings.sessionSubfolder = text
        }
    }
    Separator {}
    EffectLine {
        text: qsTr("下一张照片存到")
        what: Phrases.folder(Settings.nextFolder)
        Layout.fillWidth: true
    }

    FolderChooser {
        id: chooser
    }
}
