#pragma once

#include "core/layout/CirclePack.h"

#include <QImage>
#include <QRectF>
#include <QSize>
#include <QSizeF>

namespace nubo {

/// The map at rest painted once, with the camera it was painted under. While the map zooms, each
/// of the two levels' pictures is only moved and scaled to where the camera is at that frame, so
/// a frame of the zoom draws two images however many bubbles they hold.
struct MapPicture
{
    QImage image;        ///< the view in device pixels
    PackedCircle camera; ///< the circle the view was fitted to when it was painted
    quint64 id = 0;      ///< new with every painting, so that a texture made from it knows it is stale

    /// Where a picture lands: the part of the view it covers (view coordinates) and the part of
    /// the image that goes there (image pixels). Both empty when none of it shows.
    struct Placement
    {
        QRectF target;
        QRectF source;
    };
    /// The placement under the camera `now` in a view of `view`, both fitted with `margin` the way
    /// the map fits its camera; nothing of it ever falls outside the view.
    [[nodiscard]] Placement placed(const PackedCircle& now, QSizeF view, double margin) const;

    /// The pixels a view of `view` points takes at `ratio` pixels a point.
    [[nodiscard]] static QSize pixelsFor(QSizeF view, qreal ratio);
    /// A transparent image of `pixels` at `ratio`, to paint a picture or a part of one on.
    [[nodiscard]] static QImage blank(QSize pixels, qreal ratio);
};

} // namespace nubo
