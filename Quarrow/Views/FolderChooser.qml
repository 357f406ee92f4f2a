import QtQuick
import QtQuick.Dialogs
import Tevrin

FolderDialog {
    title: qsTr("照片存到哪里")
    onAccepted: Shell.chooseSaveFolder(selectedFolder)
}
