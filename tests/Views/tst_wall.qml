import QtQuick
import QtTest
import Tevrin
import TevrinTest

TestCase {
    id: suite

    property var window
    property var grid

    name: "Wall"
    when: windowShown

    Component {
        id: main

        MainWindow {
            width: 900
            height: 640
        }
    }

    function init() {
        Stage.reset();
        Stage.fillWall(["a.jpg", "b.jpg", "c.MOV", "d.jpg", "e.jpg", "f.jpg", "g.jpg", "h.jpg"]);
        window = createTemporaryObject(main, null);
        window.show();
        window.requestActivate();
        tryVerify(() => window.active);
        grid = findChild(window, "grid");
        tryVerify(() => grid.activeFocus && tile(7));
    }
    function tile(place) {
        return grid.itemAtIndex(place);
    }
    function middleOf(place) {
        return tile(place).mapToItem(window.contentItem, tile(place).width / 2, tile(place).height / 2);
    }
    function click(place, modifiers, button) {
        const at = middleOf(place);
        mouseClick(window.contentItem, at.x, at.y, button ?? Qt.LeftButton, modifiers ?? Qt.NoModifier);
    }
    function initials() {
        return Stage.wallNames().map(name => name[0]).join("");
    }
    function selected() {
        return Stage.wallNames().filter((name, place) => Wall.isSelected(place)).map(name => name[0]).join("");
    }

    function test_clicksAndKeysSelect() {
        click(1);
        compare(selected(), "b");
        click(4, Qt.ShiftModifier);
        compare(selected(), "bcde");
        click(2, Qt.ControlModifier);
        compare(selected(), "bde");
        click(3); // one of several selected photos: alone after the release
        compare(selected(), "d");
        Hands.press(window, Qt.Key_Right, Qt.ShiftModifier);
        compare(selected(), "de");
        Hands.press(window, Qt.Key_A, Qt.ControlModifier);
        verify(Hands.speaks(window, "已选 8 项 · " + Wall.selectionText.split(" · ")[1]));
        Hands.press(window, Qt.Key_Escape);
        compare(selected(), "");
        verify(Hands.speaks(window, "7 张照片 · 1 段视频"));
    }

    function test_aRubberBandSelects() {
        const from = middleOf(1), to = middleOf(2);
        const gap = tile(1).mapToItem(window.contentItem, 0, 0).x;
        const area = window.contentItem;
        mousePress(area, gap, from.y, Qt.LeftButton, Qt.NoModifier);
        mouseMove(area, gap + 30, from.y + 20, -1, Qt.LeftButton);
        mouseMove(area, to.x, to.y, -1, Qt.LeftButton);
        compare(selected(), "bc");
        mouseMove(area, from.x, from.y, -1, Qt.LeftButton);
        compare(selected(), "b");
        mouseRelease(area, from.x, from.y, Qt.LeftButton, Qt.NoModifier);
        compare(selected(), "b");
        mouseClick(area, gap, from.y, Qt.LeftButton); // between photos
        compare(selected(), "");
    }

    function test_draggingReordersPhotos() {
        click(5);
        click(6, Qt.ControlModifier);
        const mark = findChild(window, "insertionMark");
        const at = tile(1).mapToItem(window.contentItem, 12, 40);
        verify(Hands.drag(window, Wall.dragData(), [middleOf(5), at], false));
        verify(mark.visible);
        verify(Math.abs(mark.mapToItem(window.contentItem, 2, 0).x - tile(1).mapToItem(window.contentItem, 0, 0).x) <= 1);
        verify(Hands.drag(window, Wall.dragData(), [at], true));
        verify(!mark.visible);
        compare(initials(), "afgbcdeh");
        compare(selected(), "fg");

        const sort = findChild(window, "sortByDate");
        verify(sort.visible);
        Hands.press(window, Qt.Key_T, Qt.ControlModifier);
        Stage.awaitWall(["a.jpg", "b.jpg", "c.MOV", "d.jpg", "e.jpg", "f.jpg", "g.jpg", "h.jpg"]);
        verify(!sort.visible);
        tryVerify(() => Hands.speaks(window, "已按时间排列"));
        Hands.press(window, Qt.Key_Z, Qt.ControlModifier);
        Stage.awaitWall(["a.jpg", "f.jpg", "g.jpg", "b.jpg", "c.MOV", "d.jpg", "e.jpg", "h.jpg"]);
        sort.forceActiveFocus(Qt.TabFocusReason);
        Hands.press(window, Qt.Key_Return);
        verify(!sort.visible && grid.activeFocus);
    }

    function test_droppedAndPastedFilesAreImported() {
        const highlight = findChild(window, "dropHighlight");
        verify(!Hands.drag(window, {"text/plain": "words"}, [middleOf(0)], false));
        verify(!highlight.visible);
        verify(Hands.drag(window, {"text/uri-list": "file:///tmp/x.jpg"}, [middleOf(0)], false));
        verify(highlight.visible && Hands.speaks(window, "松开，复制到保存目录"));
    }

    function test_aPhotoIsRenamedInPlace() {
        click(3);
        Hands.press(window, Qt.Key_F2);
        const input = findChild(window, "renameInput");
        tryVerify(() => input.activeFocus);
        compare(input.text, "d"); // the extension cannot be edited
        keyClick("b");
        Hands.press(window, Qt.Key_Return);
        const box = findChild(window, "renameBox");
        verify(input.activeFocus && box.error && Hands.speaks(window, box.error));
        compare(Stage.wallNames()[3], "d.jpg");
        Hands.press(window, Qt.Key_Escape);
        verify(!box.visible && grid.activeFocus);
        Hands.press(window, Qt.Key_F2);
        keyClick("z");
        Hands.press(window, Qt.Key_Return);
        verify(!box.visible && grid.activeFocus);
        compare(Stage.wallNames()[3], "z.jpg");
        compare(selected(), "z");
    }

    function test_theWallPassesShortcutsToTheActions() {
        click(1);
        Hands.press(window, Qt.Key_Delete);
        Stage.awaitActions();
        compare(Stage.wallNames()[1], "c.MOV");
        compare(selected(), "c"); // the neighbour
        Hands.press(window, Qt.Key_Z, Qt.ControlModifier);
        Stage.awaitActions();
        Stage.awaitOnWall("b.jpg");
        click(3, Qt.NoModifier, Qt.RightButton);
        const menu = findChild(window, "photoMenu");
        tryVerify(() => menu.opened);
        Hands.press(window, Qt.Key_Escape);
        tryVerify(() => !menu.visible);
        Hands.press(window, Qt.Key_Space);
        verify(Look.open && !grid.activeFocus);
        Hands.press(window, Qt.Key_Right);
        Hands.press(window, Qt.Key_Space);
        verify(!Look.open && grid.activeFocus);
    }

    function test_tilesDescribeTheirPhoto() {
        click(0);
        verify(Hands.speaks(window, "a.jpg，照片，4032 × 3024，2.4 MB，已选中") || Hands.speaks(window, "a.jpg，照片，3024 × 4032，2.4 MB，已选中"));
        verify(Hands.speaks(window, "c.MOV，视频，24.2 MB"));
        compare(Hands.unnamed(window), []);
        compare(Hands.unreached(window), []);
    }

    function test_keyboardNavigationScrollsToThePhoto() {
        const names = [];
        for (let i = 0; i < 300; ++i)
            names.push(`IMG_${1000 + i}.jpg`);
        Stage.fillWall(names);
        grid.forceActiveFocus();
        Hands.press(window, Qt.Key_End);
        tryVerify(() => grid.atYEnd);
        Hands.press(window, Qt.Key_Home);
        tryVerify(() => grid.atYBeginning);
        "img_1200".split("").forEach(letter => keyClick(letter));
        compare(Wall.currentIndex, 200);
        tryVerify(() => tile(200) && middleOf(200).y > 0 && middleOf(200).y < window.height);
        const before = grid.contentY;
        mouseWheel(window.contentItem, 300, 300, 0, 480);
        tryVerify(() => grid.contentY < before);
        grid.positionViewAtBeginning();
        Stage.arrive("new.jpg");
        compare(Wall.currentIndex, 201);
        verify(grid.contentY - grid.originY < 300); // the wall does not scroll when a photo only moved
    }

    function test_emptyStatesAreExplained() {
        Wall.filter = Wall.Videos;
        compare(Stage.wallNames(), ["c.MOV"]);
        Stage.fillWall(["a.jpg"]);
        verify(Hands.speaks(window, "还没有视频"));
        Wall.filter = Wall.All;
        verify(!Hands.speaks(window, "还没有视频"));
        Stage.losePhotos();
        verify(Hands.speaks(window, "找不到保存目录"));
        compare(Hands.unreached(window), []);
        Stage.clearWall();
        verify(Hands.speaks(window, "扫一扫，照片到这里"));
        Stage.fillWall(["a.jpg"]);
        tryVerify(() => grid.activeFocus);
    }
}
