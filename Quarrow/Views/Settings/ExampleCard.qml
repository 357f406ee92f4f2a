import QtQuick
import QtQuick.Layouts
import Tevrin

// The effect of the current settings on a photo.
Card {
    id: card

    readonly property ImagingForm imaging: Settings.imaging

    spacing: 8
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("%1：%2，处理后：%3").arg(imaging.exampleTitle).arg(imaging.exampleBefore).arg(imaging.exampleAfter)

    Label {
        text: card.imaging.exampleTitle
        secondary: true
        font.pixelSize: Theme.caption
        elide: Text.ElideMiddle
        maximumLineCount: 1
        wrapMode: Text.WrapAnywhere
        Layout.fillWidth: true
        Accessible.ignored: true
    }
    GridLayout {
        columns: width < 440 ? 1 : 3
        columnSpacing: 12
        rowSpacing: 4
        Layout.fillWidth: true

        Label {
            text: card.imaging.exampleBefore
            font.pixelSize: 15
            Accessible.ignored: true
        }
        Icon {
            name: "back"
            rotation: parent.columns === 1 ? -90 : 180
            color: Theme.secondaryText
            Layout.preferredWidth: 18
            Layout.preferredHeight: 18
        }
        Label {
            objectName: "exampleAfter"
            text: card.imaging.exampleAfter
            color: Theme.accent
            font.pixelSize: 15
            font.weight: Font.DemiBold
            opacity: card.imaging.exampleBusy ? 0.5 : 1
            Layout.fillWidth: true
            Accessible.ignored: true
        }
    }
    Label {
        visible: text
        text: card.imaging.exampleBusy ? qsTr("正在试…") : card.imaging.exampleRemark
        secondary: true
        font.pixelSize: Theme.caption
        Layout.fillWidth: true
    }
}
