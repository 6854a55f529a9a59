import QtQuick
import QtQuick.Controls

// One entry of a context menu with its symbol; an entry that is not `available` takes no room.
MenuItem {
    id: entry

    property string symbol
    property bool available: true

    visible: available
    height: available ? implicitHeight : 0
    icon.source: symbol.length > 0 ? "image://symbol/" + symbol : ""
    icon.width: 14
    icon.height: 14
}
