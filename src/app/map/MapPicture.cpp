#include "MapPicture.h"

#include "models/map/MapScene.h"

#include <cmath>

namespace nubo {

MapPicture::Placement MapPicture::placed(const PackedCircle& now, QSizeF view, double margin) const
{
    if (image.isNull())
        return {};
    const QSizeF painted = image.deviceIndependentSize();
    const MapTransform then(camera, painted, margin);
    const MapTransform current(now, view, margin);
    if (then.scale() <= 0 || current.scale() <= 0)
        return {};
    const double k = current.scale() / then.scale();
    const QPointF corner = then.toUnit(QPointF(0, 0));
    const QRectF whole(current.toView(corner.x(), corner.y()), painted * k);
    const QRectF target = whole.intersected(QRectF(QPointF(0, 0), view));
    if (target.isEmpty())
        return {};
    const double pixels = image.devicePixelRatio() / k;
    return {target, QRectF((target.x() - whole.x()) * pixels, (target.y() - whole.y()) * pixels,
                           target.width() * pixels, target.height() * pixels)};
}

QSize MapPicture::pixelsFor(QSizeF view, qreal ratio)
{
    return {int(std::ceil(view.width() * ratio)), int(std::ceil(view.height() * ratio))};
}

QImage MapPicture::blank(QSize pixels, qreal ratio)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    return image;
}

} // namespace nubo
