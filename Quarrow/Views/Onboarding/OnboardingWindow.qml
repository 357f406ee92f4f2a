import QtQuick
import QtQuick.Layouts
import Tevrin

// The first start: an introduction, the save folder, and the first photo.
AppWindow {
    id: window

    property int step: 0
    readonly property int steps: 3

    function finish() {
        Shell.finishOnboarding();
        Shell.showMainWindow();
        close();
    }

    title: qsTr("欢迎使用 Tevrin")
    width: 560
    height: 640
    minimumWidth: 380
    minimumHeight: 420

    ScrollPage {
        anchors.fill: parent
        anchors.bottomMargin: bar.height
        focus: false
        padding: 32
        widest: 400

        Item {
            Layout.preferredHeight: Math.max(0, (window.height - bar.height - pages.implicitHeight) / 2 - 44)
        }
        ColumnLayout {
            id: pages

            WelcomeStep {
                visible: window.step === 0
            }
            FolderStep {
                visible: window.step === 1
            }
            ScanStep {
                objectName: "scanStep"
                visible: window.step === 2
            }
        }
    }
    Item {
        id: bar

        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 76

        PageIndicator {
            anchors.centerIn: parent
            count: window.steps
            current: window.step
        }
        PushButton {
            objectName: "back"
            anchors.left: parent.left
            anchors.leftMargin: 24
            anchors.verticalCenter: parent.verticalCenter
            visible: window.step > 0
            text: qsTr("上一步")
            onClicked: --window.step
        }
        PushButton {
            objectName: "next"
            anchors.right: parent.right
            anchors.rightMargin: 24
            anchors.verticalCenter: parent.verticalCenter
            focus: true
            kind: PushButton.Primary
            text: window.step < window.steps - 1 ? qsTr("下一步") : qsTr("完成")
            onClicked: window.step < window.steps - 1 ? ++window.step : window.finish()
        }
    }
}
