import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    id: suite

    property SettingsWindow window

    name: "Settings"
    when: windowShown

    Component {
        id: component

        SettingsWindow {}
    }

    function init() {
        Stage.reset();
        window = createTemporaryObject(component, null);
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
    }
    function find(name) {
        return findChild(window, name);
    }
    function press(...keys) {
        for (const key of keys)
            Hands.press(window, key);
    }
    // Focuses a field and enters a text.
    function enter(name, text) {
        const field = find(name);
        field.forceActiveFocus(Qt.TabFocusReason);
        field.selectAll();
        press(Qt.Key_Delete);
        for (const letter of text)
            keyClick(letter);
        press(Qt.Key_Return);
        return field;
    }

    function test_allControlsOfEachPageAreNamedAndReachableByKeyboard_data() {
        return [{tag: "general", page: 0}, {tag: "imaging", page: 1}, {tag: "workflow", page: 2}];
    }
    function test_allControlsOfEachPageAreNamedAndReachableByKeyboard(data) {
        Stage.setAddresses(["wlan0", "eth0"]);
        Shell.galleryEnabled = true;
        Settings.numbered = true;
        Settings.limitsFolder = true;
        Settings.imaging.limitsPixels = true;
        Settings.imaging.limitsBytes = true;
        Settings.workflow.chooseApplication("/etc/hostname", "看图");
        window.page = data.page;
        compare(Hands.unnamed(window), []);
        compare(Hands.unreached(window), []);
    }

    function test_arrowKeysTurnThePages() {
        find("pages").forceActiveFocus(Qt.TabFocusReason);
        press(Qt.Key_Right);
        compare(window.page, 1);
        verify(find("exampleAfter") && !find("sessionSubfolder"));
        press(Qt.Key_Right, Qt.Key_Right);
        compare(window.page, 0);
        press(Qt.Key_Left);
        compare(window.page, 2);
        verify(find("copy"));
    }

    function test_invalidInputIsExplainedBesideTheFieldAndEscapeRestoresTheValue() {
        const port = enter("port", "80");
        compare(Settings.port, 8000);
        verify(port.error && Hands.speaks(window, port.error));
        compare(port.text, "80");
        press(Qt.Key_Escape);
        compare(port.text, "8000");
        compare(port.error, "");
        enter("port", "9000");
        compare(Settings.port, 9000);

        const session = enter("sessionSubfolder", ".x");
        verify(session.error && Hands.speaks(window, session.error));
        compare(Settings.sessionSubfolder, "");
        enter("sessionSubfolder", "trip");
        compare(session.error, "");
        compare(Settings.sessionSubfolder, "trip");
        Settings.sessionSubfolder = "elsewhere"; // by another control
        compare(session.text, "elsewhere");
        enter("sessionSubfolder", "");
        compare(Settings.sessionSubfolder, "");
    }

    function test_arrowKeysStepNumbersWithinTheirBounds() {
        Settings.numbered = true;
        const digits = enter("digits", "42");
        compare(Settings.digits, 9);
        compare(digits.text, "9");
        press(Qt.Key_Up);
        compare(Settings.digits, 9);
        press(Qt.Key_Down, Qt.Key_Down);
        compare(Settings.digits, 7);
        compare(digits.text, "7");
        enter("digits", "");
        compare(digits.text, "7");
    }

    function test_theNamePreviewFollowsThePrefix() {
        Settings.numbered = true;
        Settings.digits = 3;
        Settings.imaging.preset = "asIs";
        enter("prefix", "Trip");
        tryVerify(() => {
            Stage.lookAhead();
            return Settings.nextName.startsWith(Settings.prefix);
        });
        compare(Settings.nextName, "Trip_001.jpg");
        verify(Hands.speaks(window, "下一张 Trip_001.jpg"));
    }

    function test_aPresetSetsItsFields() {
        window.page = 1;
        const [asIs, , small] = [0, 1, 2].map(index => find("presets").itemAt(index));
        small.forceActiveFocus(Qt.TabFocusReason);
        press(Qt.Key_Space);
        compare(Settings.imaging.preset, "small");
        compare(find("maxPixels").text, "2560");
        compare(find("maxKilobytes").text, "1000");
        compare(find("format").displayText, "JPEG");
        compare(find("quality").value, 75);
        find("quality").forceActiveFocus(Qt.TabFocusReason);
        press(Qt.Key_Right);
        compare(Settings.imaging.quality, 80);
        verify(!small.checked);
        asIs.clicked();
        verify(asIs.checked && !find("limitsPixels").checked && !find("maxPixels").visible);
    }

    function test_anApplicationCanBeFoundChosenAndTried() {
        window.page = 2;
        const workflow = Settings.workflow;
        workflow.chooseNoApplication();
        find("chooseApplication").forceActiveFocus(Qt.TabFocusReason);
        press(Qt.Key_Return);
        const sheet = find("applications");
        tryVerify(() => sheet.opened);
        Stage.offerApplications(["相册", "看图", "邮件"]);
        compare(Hands.unnamed(window), []);
        for (const letter of "看")
            find("search").taken(letter);
        compare(find("applicationList").count, 1);
        press(Qt.Key_Down, Qt.Key_Return);
        tryVerify(() => !sheet.visible);
        compare(workflow.applicationName, "看图");
        Stage.asked();
        Stage.hang(["a.jpg"]);
        workflow.tryOut(WorkflowForm.Open);
        compare(Stage.asked(), ["open a.jpg with 看图.desktop"]);
        verify(Hands.speaks(window, "没能打开：no such program"));
        find("noApplication").clicked();
        compare(workflow.applicationName, "");
    }
}
