import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    id: suite

    property Window window: Window {
        width: 300
        height: 660
    }
    property Panel panel

    name: "Panel"
    when: windowShown

    Component {
        id: panelComponent

        Panel {
            anchors.fill: parent
        }
    }
    SignalSpy {
        id: dismissals

        target: suite.panel
        signalName: "dismissed"
    }

    function init() {
        Stage.reset();
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
        panel = createTemporaryObject(panelComponent, window.contentItem);
        panel.forceActiveFocus();
        tryVerify(() => panel.activeFocus);
    }
    function find(name) {
        return findChild(panel, name);
    }

    function test_theAddressPickerAppearsForSeveralAddressesAndStoresTheChoice() {
        const picker = find("addressPicker");
        verify(!picker.visible);
        Stage.setAddresses(["wlan0", "enp3s0"]);
        verify(picker.visible);
        compare(picker.displayText, "自动选择地址");
        picker.forceActiveFocus();
        Hands.press(window, Qt.Key_Down);
        Hands.press(window, Qt.Key_Down);
        compare(Shell.preferredInterface, "enp3s0");
        Stage.setAddresses(["wlan0", "usb0"]);
        compare(picker.displayText, "enp3s0（未连接）");
        Stage.setAddresses(["usb0"]);
        verify(!picker.visible);
    }

    function test_theDisplayedCodeContainsTheAddress() {
        waitForRendering(panel);
        compare(Hands.readCode(window), "http://192.168.1.20:8000/?k=7GQ2M4XK9P");
        Stage.setAddresses(["eth0"]);
        waitForRendering(panel);
        compare(Hands.readCode(window), "http://10.0.0.105:8000/?k=7GQ2M4XK9P");
    }

    function test_allControlsStayReachableInASmallPanel() {
        const page = find("page");
        for (const arrange of [() => {}, () => Stage.beginUpload(), () => Stage.setAddresses([])]) {
            Stage.reset();
            arrange();
            window.height = 100;
            tryVerify(() => page.interactive);
            window.height = Qt.binding(() => panel.implicitHeight);
            tryVerify(() => !page.interactive);
            verify(panel.implicitHeight >= 240 && panel.implicitHeight <= 660, panel.implicitHeight);
        }
        window.height = 260;
        tryVerify(() => page.interactive);
        const last = findChild(page, "folderRow");
        last.forceActiveFocus(Qt.TabFocusReason);
        const bottom = last.mapToItem(page, 0, last.height).y;
        verify(bottom > 0 && bottom <= page.height, bottom);
        window.height = 660;
    }

    function test_escapeClosesThePanel() {
        dismissals.clear();
        Hands.press(window, Qt.Key_Escape);
        compare(dismissals.count, 1);
    }

    function test_problemsAreShownWhileTheyLast() {
        Stage.setError("无法创建保存目录：只读");
        Stage.blockByFirewall();
        verify(Hands.speaks(window, "无法创建保存目录：只读"));
        verify(Hands.speaks(window, Server.firewallAdvice));
        compare(Server.firewallCommand, "sudo ufw allow 8000/tcp");
        Shell.dismissError();
        Stage.receive("a.jpg：2 MB");
        verify(!Hands.speaks(window, "无法创建保存目录：只读"));
        verify(!Hands.speaks(window, Server.firewallAdvice)); // a photo has arrived
        verify(Hands.speaks(window, "a.jpg：2 MB"));
    }

    function test_progressIsShownDuringUploads() {
        verify(!Hands.speaks(window, "接收进度"));
        Stage.beginUpload();
        verify(Hands.speaks(window, "正在接收 1 个文件"));
        compare(Math.round(Arrivals.share * 100), 42);
        Stage.setWaiting(3);
        verify(Hands.speaks(window, "还有 3 张照片等待处理"));
        Stage.endUploads();
        Stage.setWaiting(0);
        verify(!Hands.speaks(window, "接收进度"));
        verify(!Hands.speaks(window, "还有 3 张照片等待处理"));
    }
}
