import QtQuick
import QtQuick.Templates as T
import Tevrin

// A menu: arrow keys, first letters and Return choose, Escape closes. Its entries are PopupMenuItem,
// PopupMenuSeparator and other menus.
T.Menu {
    id: menu

    property string iconName // shown beside its name in the parent menu

    // Returns the width of the widest entry, including entries added later.
    function widest() {
        let most = 176;
        for (let i = 0; i < count; ++i)
            most = Math.max(most, itemAt(i).implicitWidth);
        return most;
    }

    implicitHeight: contentHeight + topPadding + bottomPadding
    contentWidth: 176
    implicitWidth: contentWidth + leftPadding + rightPadding
    padding: 4
    margins: 8
    overlap: -2
    cascade: true
    onAboutToShow: contentWidth = widest()
    onCountChanged: contentWidth = widest()

    delegate: PopupMenuItem {}
    contentItem: ListView {
        implicitHeight: contentHeight
        model: menu.contentModel
        currentIndex: menu.currentIndex
        interactive: Window.window && contentHeight + 24 > Window.window.height
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.title
    }
    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
    }
    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.motion
            easing.type: Easing.OutCubic
        }
    }
}
