import QtQuick
import QtQuick.Layouts
import Tevrin

ScrollPage {
    id: page

    signal resetAsked

    widest: 640
    spacing: 24

    ErrorNotice {
        Layout.fillWidth: true
    }
    FolderSection {
        Layout.fillWidth: true
    }
    NamingSection {
        Layout.fillWidth: true
    }
    LimitsSection {
        Layout.fillWidth: true
    }
    PhonesSection {
        Layout.fillWidth: true
        onResetAsked: page.resetAsked()
    }
    ComputerSection {
        Layout.fillWidth: true
    }
}
