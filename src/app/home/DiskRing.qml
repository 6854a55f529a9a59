import QtQuick

// How full the start-up disk is, as a ring over a faint full circle with the share in its centre.
Item {
    id: ring

    property real value: 0
    property string tone: "accent"
    property string percentText: ""

    implicitWidth: Theme.diskRingSize
    implicitHeight: Theme.diskRingSize

    property real shown: Math.max(0, Math.min(1, value))
    Behavior on shown { NumberAnimation { duration: Theme.reflow.duration; easing.type: Theme.reflow.easing } }
    onShownChanged: canvas.requestPaint()
    onToneChanged: canvas.requestPaint()

    Canvas {
        id: canvas
        anchors.fill: parent
        onPaint: {
            const ctx = getContext("2d")
            ctx.reset()
            const line = Theme.diskRingLine
            const radius = (Math.min(width, height) - line) / 2
            ctx.lineWidth = line
            ctx.lineCap = "round"
            ctx.strokeStyle = Theme.separator
            ctx.beginPath()
            ctx.arc(width / 2, height / 2, radius, 0, 2 * Math.PI)
            ctx.stroke()
            if (ring.shown > 0) {
                ctx.strokeStyle = Theme.toneColor(ring.tone)
                ctx.beginPath()
                ctx.arc(width / 2, height / 2, radius, -Math.PI / 2, -Math.PI / 2 + 2 * Math.PI * ring.shown)
                ctx.stroke()
            }
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 0
        Text {
            objectName: "diskPercent"
            anchors.horizontalCenter: parent.horizontalCenter
            text: ring.percentText
            color: Theme.textPrimary
            font.family: Theme.fontFamily
            font.pixelSize: 30
            font.weight: Font.Bold
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "usado"
            color: Theme.textSecondary
            font.family: Theme.fontFamily
            font.pixelSize: Theme.fontSizeCaption
        }
    }
}
