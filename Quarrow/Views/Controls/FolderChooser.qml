import Tevrin

FolderPicker {
    title: qsTr("照片存到哪里")
    currentFolder: "file://" + Server.saveFolder.split("/").map(encodeURIComponent).join("/")
    onAccepted: Shell.chooseSaveFolder(selectedFolder)
}
