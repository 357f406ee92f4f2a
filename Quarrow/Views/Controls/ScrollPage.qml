import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Tevrin

// A column that scrolls if it does not fit, and keeps the focused control visible.
Flickable {
    id: page

    default property alias content: column.data
    property int padding: 24
    property alias spacing: column.spacing
    property real widest: Infinity
    readonly property real fittingHeight: column.implicitHeight + 2 * padding
    readonly property Item reached: Window.activeFocusItem

    function reveal(item) {
        const top = item.mapToItem(column, 0, 0).y + padding;
        contentY = Math.max(0, Math.min(Math.max(contentY, top + item.height + 12 - height), top - 12));
    }

    function scroll(by) {
        contentY = Math.max(0, Math.min(contentY + by, contentHeight - height));
    }

    contentHeight: fittingHeight
    focus: true
    Keys.onUpPressed: scroll(-48)
    Keys.onDownPressed: scroll(48)
    Keys.onPressed: event => {
        event.accepted = event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown;
        if (event.accepted)
            scroll(event.key === Qt.Key_PageUp ? -0.9 * height : 0.9 * height);
    }
    interactive: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    onReachedChanged: {
        for (let each = reached; each; each = each.parent)
            if (each === column)
                reveal(reached);
    }

    ColumnLayout {
        id: column

        x: Math.round((page.width - width) / 2)
        y: page.padding
        width: Math.min(page.width - 2 * page.padding, page.widest)
        spacing: 12
    }

    T.ScrollBar.vertical: ScrollBar {}
}
