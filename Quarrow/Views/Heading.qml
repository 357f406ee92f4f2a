import QtQuick
import Tevrin

Words {
    font.pixelSize: Theme.title
    font.weight: Font.DemiBold
    Accessible.role: Accessible.Heading
}
