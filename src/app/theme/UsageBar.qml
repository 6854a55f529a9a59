import QtQuick

// A thin bar filled to `value` (0 to 1), tinted by `tone`: "accent", "warning" or "critical".
Rectangle {
    id: bar

    property real value: 0
    property string tone: "accent"

    implicitHeight: 6
    radius: height / 2
    color: Theme.separator

    Rectangle {
        width: Math.max(bar.height, Math.min(1, Math.max(0, bar.value)) * bar.width)
        height: bar.height
        radius: bar.radius
        color: Theme.toneColor(bar.tone)
        Behavior on width { NumberAnimation { duration: Theme.reflow.duration; easing.type: Theme.reflow.easing } }
        Behavior on color { ColorAnimation { duration: Theme.reflow.duration } }
    }
}
