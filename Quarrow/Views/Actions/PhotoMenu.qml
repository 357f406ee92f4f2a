import QtQuick
import QtQml.Models
import Tevrin

// The menu of the selected photos: `popup()` opens it under the pointer. A single photo is renamed on its
// tile (`renameAsked`); batches and exports have dialogs.
PopupMenu {
    id: menu

    required property ActionSheets sheets
    readonly property bool many: Actions.count > 1

    signal renameAsked

    objectName: "photoMenu"
    title: many ? qsTr("%1 项照片").arg(Actions.count) : qsTr("照片")
    onAboutToShow: Actions.lookForApplications()

    PopupMenuItem {
        objectName: "open"
        text: qsTr("打开")
        icon.name: "image"
        keys: qsTr("回车")
        onTriggered: Actions.open()
    }
    PopupMenu {
        id: applications

        objectName: "applications"
        title: qsTr("打开方式")
        iconName: "apps"
        enabled: Actions.applications.length > 0

        Instantiator {
            model: Actions.applications
            onObjectAdded: (index, entry) => applications.insertItem(index, entry as Item)
            onObjectRemoved: (index, entry) => applications.removeItem(entry as Item)

            // qmllint disable unqualified
            delegate: PopupMenuItem {
                required property var modelData
                required property int index

                text: index === 0 ? qsTr("%1（默认）").arg(modelData.name) : modelData.name
                onTriggered: Actions.openWith(modelData.id)
            }
            // qmllint enable unqualified
        }
    }
    PopupMenuItem {
        objectName: "show"
        text: qsTr("在文件夹中显示")
        icon.name: "folder"
        onTriggered: Actions.showInFolder()
    }
    PopupMenuItem {
        objectName: "copy"
        text: qsTr("拷贝")
        icon.name: "copy"
        keys: "Ctrl+C"
        onTriggered: Actions.copy()
    }
    PopupMenuSeparator {}
    PopupMenuItem {
        objectName: "rename"
        text: menu.many ? qsTr("批量重命名…") : qsTr("重命名")
        icon.name: "rename"
        keys: "F2"
        onTriggered: {
            if (menu.many)
                menu.sheets.rename();
            else
                menu.renameAsked();
        }
    }
    PopupMenuItem {
        objectName: "rotateLeft"
        text: qsTr("向左旋转")
        icon.name: "rotate-left"
        keys: "Ctrl+L"
        enabled: Actions.pictures > 0
        onTriggered: Actions.rotate(Actions.Anticlockwise)
    }
    PopupMenuItem {
        objectName: "rotateRight"
        text: qsTr("向右旋转")
        icon.name: "rotate-right"
        keys: "Ctrl+R"
        enabled: Actions.pictures > 0
        onTriggered: Actions.rotate(Actions.Clockwise)
    }
    PopupMenuItem {
        objectName: "export"
        text: qsTr("导出…")
        icon.name: "export"
        keys: "Ctrl+E"
        onTriggered: menu.sheets.exportPhotos()
    }
    PopupMenuSeparator {}
    PopupMenuItem {
        objectName: "sortByDate"
        text: qsTr("按时间排列")
        icon.name: "clock"
        keys: "Ctrl+T"
        enabled: Actions.canSortByDate
        onTriggered: Actions.sortByDate()
    }
    PopupMenuSeparator {}
    PopupMenuItem {
        objectName: "trash"
        text: qsTr("移到废纸篓")
        icon.name: "trash"
        keys: "Delete"
        grave: true
        onTriggered: Actions.trash()
    }
}
