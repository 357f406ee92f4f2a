import QtQuick
import QtQuick.Layouts
import Tevrin

AppWindow {
    id: window

    property alias page: switcher.current

    title: qsTr("设置")
    width: 640
    height: 740
    minimumWidth: 380
    minimumHeight: 360
    Component.onCompleted: Settings.watched = true
    Component.onDestruction: Settings.watched = false

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        PageSwitcher {
            id: switcher

            objectName: "pages"
            focus: true
            pages: [{text: qsTr("通用"), icon: "settings"}, {text: qsTr("图片处理"), icon: "image"}, {text: qsTr("收到之后"), icon: "bolt"}]
            Layout.topMargin: 16
            Layout.leftMargin: 24
            Layout.rightMargin: 24
            Layout.maximumWidth: 640
            Layout.fillWidth: true
            Layout.alignment: Qt.AlignHCenter
        }
        Loader {
            sourceComponent: [general, imaging, workflow][switcher.current]
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }
    Component {
        id: general

        GeneralPage {
            onResetAsked: confirmation.open() // qmllint disable unqualified
        }
    }
    Component {
        id: imaging

        ImagingPage {}
    }
    Component {
        id: workflow

        WorkflowPage {}
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
