import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    name: "Windows"
    when: windowShown

    Component {
        id: main

        MainWindow {}
    }
    Component {
        id: settings

        SettingsWindow {}
    }
    Component {
        id: onboarding

        OnboardingWindow {}
    }
    Component {
        id: help

        HelpWindow {}
    }
    Component {
        id: leave

        LeaveWindow {}
    }
    Component {
        id: panel

        Window {
            width: 300
            height: 660

            Panel {
                anchors.fill: parent
                focus: true
            }
        }
    }

    function init() {
        Stage.reset();
    }
    function open(component) {
        const window = createTemporaryObject(component, null);
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
        return window;
    }

    function test_allControlsAreNamedAndReachableByKeyboard_data() {
        return [{tag: "panel", view: panel}, {tag: "main", view: main}, {tag: "settings", view: settings},
            {tag: "help", view: help}, {tag: "leave", view: leave}, {tag: "onboarding 1", view: onboarding, step: 0},
            {tag: "onboarding 2", view: onboarding, step: 1}, {tag: "onboarding 3", view: onboarding, step: 2}];
    }
    function test_allControlsAreNamedAndReachableByKeyboard(data) {
        Stage.setAddresses(["wlan0", "eth0"]);
        Stage.failCheck("连接超时");
        Stage.blockByFirewall();
        Stage.setError("无法创建保存目录：只读");
        const window = open(data.view);
        if (data.step !== undefined)
            window.step = data.step;
        compare(Hands.unnamed(window), []);
        compare(Hands.unreached(window), []);
    }

    function test_theKeyIsResetOnlyAfterConfirmation() {
        const window = open(settings);
        const sheet = findChild(window, "resetConfirmation");
        const before = Stage.accessKey();
        const ask = () => {
            findChild(window, "resetKey").clicked();
            tryVerify(() => sheet.opened);
            verify(sheet.text === Shell.resetKeyWarning && Hands.speaks(window, sheet.text));
        };
        ask();
        Hands.press(window, Qt.Key_Escape);
        tryVerify(() => !sheet.visible);
        ask();
        Hands.press(window, Qt.Key_Return); // "cancel" has focus
        tryVerify(() => !sheet.visible);
        compare(Stage.accessKey(), before);
        ask();
        Hands.press(window, Qt.Key_Tab);
        Hands.press(window, Qt.Key_Return);
        tryVerify(() => !sheet.visible);
        verify(Stage.accessKey() !== before);
    }

    function test_settingsAreStoredImmediately() {
        const window = open(settings);
        const choice = findChild(window, "hotKey");
        compare(choice.displayText, "不使用");
        choice.forceActiveFocus();
        Hands.press(window, Qt.Key_Down);
        Hands.press(window, Qt.Key_Down);
        compare(Shell.hotKeyPreset, 1);
        Hands.press(window, Qt.Key_Up);
        Hands.press(window, Qt.Key_Up);
        compare(Shell.hotKeyPreset, -1);
        Stage.setPort(8003);
        verify(Hands.speaks(window, "首选端口被占用，实际使用 8003"));
    }

    function test_theLastStepShowsACheckMarkAfterTheFirstPhoto() {
        Stage.receive("earlier.jpg：2 MB"); // before the window existed
        const window = open(onboarding);
        Hands.press(window, Qt.Key_Return);
        Hands.press(window, Qt.Key_Return);
        compare(window.step, 2);
        const step = findChild(window, "scanStep");
        verify(!step.arrived && Hands.speaks(window, "手机要扫的二维码"));
        Stage.receive("first.jpg：2 MB");
        verify(step.arrived && Hands.speaks(window, "收到第一张照片了"));
        verify(!Hands.speaks(window, "手机要扫的二维码") && Hands.speaks(window, "first.jpg：2 MB"));
        compare(Stage.asked(), []);
        Hands.press(window, Qt.Key_Return);
        compare(Stage.asked(), ["close panel", "main"]); // the onboarding is done
        verify(!window.visible);
    }
}
