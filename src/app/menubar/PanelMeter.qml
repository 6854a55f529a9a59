import QtQuick
import QtQuick.Layouts

// A labelled bar with its percentage; red when the model says the value is critical.
ColumnLayout {
    id: meter

    property string label
    property real value: 0
    property string percentText
    property bool critical: false

    spacing: Theme.spacingSmall

    RowLayout {
        Layout.fillWidth: true
        Text {
            Layout.fillWidth: true
            text: meter.label
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 12
            font.weight: Font.DemiBold
        }
        Text {
            objectName: "meterPercent"
            text: meter.percentText
            color: meter.critical ? Theme.red : Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: 12
        }
    }
    UsageBar {
        objectName: "meterBar"
        Layout.fillWidth: true
        value: meter.value
        tone: meter.critical ? "critical" : "accent"
    }
}
