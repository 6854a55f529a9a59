import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One suggestion: a tinted symbol, what it is about, its size when it has one, and the button
// that goes there.
Rectangle {
    id: row

    required property var recommendation
    signal activated()

    implicitHeight: layout.implicitHeight + Theme.spacing * 1.5 * 2
    radius: Theme.radiusCard
    color: Theme.cardBackground

    RowLayout {
        id: layout
        anchors.fill: parent
        anchors.leftMargin: Theme.spacingLarge
        anchors.rightMargin: Theme.spacingLarge
        spacing: Theme.spacingLarge

        Rectangle {
            readonly property color tint: Theme.tint(row.recommendation.color)
            Layout.preferredWidth: Theme.iconTile
            Layout.preferredHeight: Theme.iconTile
            radius: Theme.radiusSmall + 2
            color: Qt.rgba(tint.r, tint.g, tint.b, 0.16)
            SymbolIcon {
                anchors.centerIn: parent
                symbol: row.recommendation.symbol
                tint: parent.tint
                size: 18
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: row.recommendation.title
                color: Theme.textPrimary
                font.family: Theme.fontFamily
                font.pixelSize: Theme.fontSizeBody
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Text {
                objectName: "recommendationDetail"
                Layout.fillWidth: true
                text: row.recommendation.detail
                color: Theme.textSecondary
                font.family: Theme.fontFamily
                font.pixelSize: 12
                wrapMode: Text.WordWrap
                maximumLineCount: 2
                elide: Text.ElideRight
            }
        }
        Text {
            visible: text.length > 0
            text: row.recommendation.sizeText
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeBody
            font.weight: Font.DemiBold
        }
        ActionButton {
            objectName: "action:" + row.recommendation.id
            text: row.recommendation.action
            onClicked: row.activated()
        }
    }
}
