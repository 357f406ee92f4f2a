import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    id: suite

    property AppWindow window: AppWindow {
        width: 900
        height: 700

        FocusScope {
            id: wall

            anchors.fill: parent
            focus: true
            activeFocusOnTab: true
            Accessible.role: Accessible.List
            Accessible.name: "照片"
            Keys.forwardTo: [layer]
        }
        ActionsLayer {
            id: layer

            anchors.fill: parent
            onReleased: wall.forceActiveFocus()
        }
    }

    name: "Actions"
    when: windowShown

    SignalSpy {
        id: renames

        target: layer
        signalName: "renameAsked"
    }

    function init() {
        Stage.reset();
        Stage.hang(["a.jpg", "b.jpg", "c.mov"]);
        Stage.asked();
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
        wall.forceActiveFocus();
        tryVerify(() => wall.activeFocus);
        renames.clear();
    }
    function cleanup() {
        for (const name of ["renameSheet", "exportSheet", "failureSheet", "openMany", "photoMenu"])
            find(name).close();
        Actions.dismissNote();
    }
    function find(name) {
        return findChild(layer, name);
    }
    function opened(name) {
        const found = find(name);
        tryVerify(() => found.opened);
        return found;
    }
    // Returns the text of the highlighted entry.
    function highlighted(menu) {
        return menu.itemAt(menu.currentIndex)?.text;
    }

    function test_arrowKeysMoveThroughTheMenuOfTheSelection() {
        Stage.select([]);
        layer.popup();
        verify(!find("photoMenu").visible); // nothing is selected
        Stage.select(["a.jpg"]);
        layer.popupAt(wall);
        const menu = opened("photoMenu");
        compare(Hands.unnamed(window), []);
        Hands.press(window, Qt.Key_Down);
        compare(highlighted(menu), "打开");
        while (highlighted(menu) !== "重命名")
            Hands.press(window, Qt.Key_Down);
        Hands.press(window, Qt.Key_Return);
        compare(renames.count, 1);
        tryVerify(() => !menu.visible);

        Stage.select(["c.mov"]);
        verify(!find("rotateLeft").enabled && !find("rotateRight").enabled && !find("sortByDate").enabled);
        Stage.select(["a.jpg", "c.mov"]);
        verify(find("rotateLeft").enabled);
        compare(find("rename").text, "批量重命名…");
        find("show").triggered();
        compare(Stage.asked(), ["show a.jpg c.mov"]);
    }

    function test_shortcutsTriggerTheMenuActions() {
        Stage.select(["a.jpg", "b.jpg"]);
        Hands.press(window, Qt.Key_C, Qt.ControlModifier);
        Hands.press(window, Qt.Key_Return);
        compare(Stage.asked(), ["copy a.jpg b.jpg", "open a.jpg b.jpg"]);
        Hands.press(window, Qt.Key_E, Qt.ControlModifier);
        opened("exportSheet").close();
        Hands.press(window, Qt.Key_F2);
        opened("renameSheet").close();
        Stage.select(["a.jpg"]);
        Hands.press(window, Qt.Key_F2);
        compare(renames.count, 1);
    }

    function test_theDeletionNoteOffersUndo() {
        Stage.select(["a.jpg", "b.jpg"]);
        Hands.press(window, Qt.Key_Delete);
        Stage.awaitActions();
        compare(Stage.photoNames(), ["c.mov"]);
        const bar = find("undoBar");
        tryVerify(() => bar.opacity === 1);
        verify(Hands.speaks(window, "已将 2 项移到废纸篓"));
        const undo = findChild(bar, "undo");
        undo.forceActiveFocus(Qt.TabFocusReason);
        verify(Actions.noteHeld);
        Hands.press(window, Qt.Key_Return);
        Stage.awaitActions();
        compare(Stage.photoNames(), ["a.jpg", "b.jpg", "c.mov"]);
        compare(Actions.note, "已放回 2 项");
        findChild(bar, "close").clicked();
        tryVerify(() => !bar.visible);
        verify(wall.activeFocus && !Actions.noteHeld);
    }

    function test_theRenameFormPreviewsNamesAndAppliesThemOnReturn() {
        Stage.select(["a.jpg", "b.jpg"]);
        layer.rename();
        const sheet = opened("renameSheet");
        const list = findChild(sheet.contentItem, "preview");
        Stage.awaitActions();
        compare(list.count, 2);
        compare(Hands.unnamed(window), []);
        for (const key of [Qt.Key_X, Qt.Key_Slash])
            Hands.press(window, key);
        Stage.awaitActions();
        verify(Hands.speaks(window, "名称不能以点开头，也不能含有 / 和 :"));
        const apply = findChild(sheet.contentItem, "apply");
        verify(!apply.enabled);
        Hands.press(window, Qt.Key_Backspace);
        Stage.awaitActions();
        verify(apply.enabled && Hands.speaks(window, "x001.jpg"));
        Hands.press(window, Qt.Key_Return);
        Stage.awaitActions();
        tryVerify(() => !sheet.visible);
        compare(Stage.photoNames(), ["c.mov", "x001.jpg", "x002.jpg"]);
        Hands.press(window, Qt.Key_Z, Qt.ControlModifier);
        Stage.awaitActions();
        compare(Stage.photoNames(), ["a.jpg", "b.jpg", "c.mov"]);
    }

    function test_theExportFormShowsTheEstimateAndTheResult() {
        Stage.saveWithPhotos();
        Stage.select(["a.jpg", "c.mov"]);
        layer.exportPhotos();
        const sheet = opened("exportSheet");
        Stage.awaitActions();
        compare(Hands.unnamed(window), []);
        verify(Hands.speaks(window, "→ " + Actions.exporting.exampleCopy) && Actions.exporting.exampleCopy);
        const apply = findChild(sheet.contentItem, "apply");
        apply.clicked();
        Stage.awaitActions();
        verify(Hands.speaks(window, "导出了 1 项，1 项没能导出")); // this decoder cannot encode
        verify(Hands.speaks(window, "a.jpg：无法编码为 public.jpeg"));
        verify(apply.activeFocus);
        findChild(sheet.contentItem, "showCopies").clicked();
        compare(Stage.asked(), ["show c.mov"]);
        Hands.press(window, Qt.Key_Escape);
        tryVerify(() => !sheet.visible);
    }

    function test_openingManyPhotosAsksFirstAndFailuresAreListed() {
        const names = Array.from({length: 11}, (_, i) => `${i + 10}.jpg`);
        Stage.hang(names);
        Stage.select(names);
        Actions.open();
        const question = opened("openMany");
        compare(Stage.asked(), []);
        Hands.press(window, Qt.Key_Tab);
        Hands.press(window, Qt.Key_Return);
        tryVerify(() => !question.visible);
        compare(Stage.asked().length, 1);
        Actions.openWith("/nowhere/viewer.desktop");
        const sheet = opened("failureSheet");
        verify(Hands.speaks(window, "10.jpg：no such program"));
        Hands.press(window, Qt.Key_Escape);
        tryVerify(() => !sheet.visible);
        compare(Actions.failure, "");
    }
}
