import QtQuick
import Tevrin

// Why there are no photos to see, except that none has arrived yet.
Item {
    id: messages

    WallMessage {
        anchors.centerIn: parent
        visible: Wall.state === Wall.Missing
        icon: "drive"
        grave: true
        title: qsTr("找不到保存目录")
        text: Server.error || qsTr("“%1”现在不在。接回它所在的磁盘，照片就会回来。").arg(Phrases.folder(Server.saveFolder))

        PushButton {
            text: qsTr("换一个目录…")
            onClicked: chooser.open()
        }
        PushButton {
            text: qsTr("再看一次")
            icon.name: "refresh"
            kind: PushButton.Primary
            onClicked: Wall.lookAgain()
        }
    }
    WallMessage {
        anchors.centerIn: parent
        visible: Wall.state === Wall.NoMatch
        icon: Wall.filter === Wall.Videos ? "video" : "image"
        title: Wall.filter === Wall.Videos ? qsTr("还没有视频") : qsTr("还没有照片")
        text: Wall.filter === Wall.Videos ? qsTr("这里的 %1 项都是照片。").arg(Wall.total) : qsTr("这里的 %1 项都是视频。").arg(Wall.total)

        PushButton {
            text: qsTr("显示全部")
            kind: PushButton.Primary
            onClicked: Wall.filter = Wall.All
        }
    }
    WallMessage {
        anchors.centerIn: parent
        visible: Wall.state === Wall.Loading && slow.over
        icon: "wall"
        title: qsTr("正在看看有哪些照片…")
    }
    // Most folders are scanned before anyone could read that.
    Timer {
        id: slow

        property bool over: false

        interval: 400
        running: Wall.state === Wall.Loading && !over
        onTriggered: over = true
    }
    FolderChooser {
        id: chooser
    }
}
