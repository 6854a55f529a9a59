#include "platform/SymbolImages.h"

#include <QPainter>

namespace nubo {

QImage neutralSymbolImage(const QSize& size)
{
    QImage image(size.isValid() ? size : QSize(16, 16), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal pen = qMax<qreal>(1.0, image.width() / 10.0);
    painter.setPen(QPen(QColor(128, 128, 128), pen));
    painter.drawEllipse(QRectF(image.rect()).adjusted(pen, pen, -pen, -pen));
    return image;
}

} // namespace nubo
