import Tevrin

ToggleRow {
    text: qsTr("让手机浏览照片")
    detail: checked ? qsTr("共享“%1” · %2 张").arg(Server.sharedFolderName).arg(Server.sharedCount) : qsTr("现在手机只能上传，看不到照片")
    checked: Shell.galleryEnabled
    onToggled: Shell.galleryEnabled = checked
}
