import QtQuick
import Tevrin

Label {
    font.pixelSize: Theme.title
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
