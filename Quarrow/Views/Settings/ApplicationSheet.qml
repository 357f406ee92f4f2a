import QtQuick
import QtQuick.Layouts
import Tevrin

// The installed applications, to choose one that opens received photos.
Sheet {
    id: sheet

    readonly property WorkflowForm workflow: Settings.workflow

    function choose() {
        const item = list.currentItem as ApplicationItem;
        if (!item)
            return;
        workflow.chooseApplication(item.entry, item.name);
        close();
    }

    title: qsTr("用哪个应用打开照片")
    detail: qsTr("能看照片的排在前面")
    widest: 440
    first: search
    onAboutToShow: {
        workflow.applications.search = "";
        workflow.findApplications();
    }

    TextField {
        id: search

        objectName: "search"
        name: qsTr("搜索应用")
        placeholder: qsTr("搜索")
        pause: 0
        value: sheet.workflow.applications.search
        Layout.fillWidth: true
        onTaken: text => sheet.workflow.applications.search = text
        Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
        Keys.onReturnPressed: sheet.choose()
        Keys.onEnterPressed: sheet.choose()
    }
    ListView {
        id: list

        objectName: "applicationList"
        implicitHeight: Math.max(120, Math.min(contentHeight, 320))
        clip: true
        model: sheet.workflow.applications
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Layout.fillWidth: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("应用")
        Keys.onReturnPressed: sheet.choose()
        Keys.onEnterPressed: sheet.choose()
        Keys.onSpacePressed: sheet.choose()
        onCountChanged: currentIndex = 0

        // qmllint disable unqualified
        delegate: ApplicationItem {
            width: ListView.view.width
            ringed: ListView.isCurrentItem
            chosen: entry === sheet.workflow.applicationEntry
            onClicked: {
                list.currentIndex = index;
                sheet.choose();
            }
        }
        // qmllint enable unqualified

        Label {
            anchors.centerIn: parent
            visible: list.count === 0
            text: sheet.workflow.searching ? qsTr("正在找已安装的应用…") : sheet.workflow.applications.search ? qsTr("没有叫这个名字的应用") : qsTr("没有找到能打开照片的应用")
            secondary: true
        }
    }

    buttons: [
        Item {
            Layout.fillWidth: true
        },
        PushButton {
            objectName: "cancel"
            text: qsTr("取消")
            onClicked: sheet.close()
        }
    ]
}
