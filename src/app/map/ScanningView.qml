import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Nubo.Models

// A scan without a tree to show yet: files and bytes so far and the folder being read.
Item {
    id: scanning

    required property MapModel model

    component ScanFigure: ColumnLayout {
        property string value
        property string caption
        spacing: 2
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: parent.value
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 20
            font.weight: Font.DemiBold
        }
        Text {
            Layout.alignment: Qt.AlignHCenter
            text: parent.caption
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.spacingHuge * 2, 520)
        spacing: Theme.spacingLarge

        Item {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 88
            implicitHeight: 88
            // Three rings that breathe while the disk is read.
            Repeater {
                model: 3
                delegate: Rectangle {
                    required property int index
                    anchors.centerIn: parent
                    width: 88 - index * 24
                    height: width
                    radius: width / 2
                    color: "transparent"
                    border.width: 2
                    border.color: Theme.accent
                    opacity: 0.25 + index * 0.25
                    SequentialAnimation on scale {
                        running: scanning.visible
                        loops: Animation.Infinite
                        NumberAnimation { from: 0.85; to: 1.0; duration: 700 + index * 120; easing.type: Easing.InOutSine }
                        NumberAnimation { from: 1.0; to: 0.85; duration: 700 + index * 120; easing.type: Easing.InOutSine }
                    }
                }
            }
        }
        Text {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: scanning.model ? scanning.model.scanningTitle : ""
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeTitle
            font.weight: Font.Bold
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: Theme.spacingHuge
            ScanFigure {
                objectName: "scannedFiles"
                value: scanning.model ? scanning.model.scannedFilesText : "0"
                caption: "archivos"
            }
            ScanFigure {
                objectName: "scannedBytes"
                value: scanning.model ? Texts.bytes(scanning.model.scannedBytes) : ""
                caption: "leídos"
            }
        }
        Text {
            objectName: "scanningPath"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            text: scanning.model ? scanning.model.scanningPathText : ""
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
            elide: Text.ElideMiddle
        }
    }
}
