import QtQuick
import QtQuick.Layouts
import Tevrin

ColumnLayout {
    spacing: 24

    Badge {
        icon: "folder"
        Layout.alignment: Qt.AlignHCenter
    }
    StepText {
        title: qsTr("照片存到哪里")
        text: qsTr("收到的照片和视频都放进这个目录。以后可以在设置里更改。")
    }
    Card {
        Layout.fillWidth: true

        SettingRow {
            text: Phrases.folder(Server.saveFolder)

            PushButton {
                text: qsTr("更改…")
                Accessible.name: qsTr("更改保存目录")
                onClicked: chooser.open()
            }
        }
    }
    ErrorNotice {
        Layout.fillWidth: true
    }
    FolderChooser {
        id: chooser
    }
}
