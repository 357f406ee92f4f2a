import QtQuick
import Tevrin

// The dialogs of the photo actions; one per window that shows photos.
Item {
    id: sheets

    readonly property bool opened: renaming.visible || exporting.visible || question.visible || failures.visible

    function rename() {
        if (Actions.count > 0)
            renaming.open();
    }
    function exportPhotos() {
        if (Actions.count > 0)
            exporting.open();
    }

    RenameSheet {
        id: renaming
    }
    ExportSheet {
        id: exporting
    }
    FailureSheet {
        id: failures
    }
    ConfirmationSheet {
        id: question

        property int count

        objectName: "openMany"
        title: qsTr("打开 %1 项？").arg(count)
        text: qsTr("每一项都可能打开一个窗口。")
        confirmText: qsTr("全部打开")
        confirmKind: PushButton.Primary
        onAccepted: Actions.open(Actions.Confirmed)
    }
    Connections {
        target: Actions

        function onAskedToOpenMany(count) {
            question.count = count;
            question.open();
        }
        function onFailureChanged() {
            failures.visible = Actions.failure !== "";
        }
    }
}
