#pragma once

#include "platform/AppIcons.h"

#include <QColor>
#include <QHash>
#include <QPainter>
#include <QRectF>

#include <atomic>

namespace nubo {

/// Icons for tests: a rounded square of one colour with a white disc, at the asked size, for each
/// path in `known`, nothing for any other; counts the calls, which may come from any thread.
/// Fill `known` first.
class FakeAppIcons final : public AppIcons
{
public:
    [[nodiscard]] QImage icon(const QString& path, int pixels) const override
    {
        ++calls;
        const auto colour = known.constFind(path);
        if (colour == known.cend() || pixels <= 0)
            return {};
        QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(*colour);
        painter.drawRoundedRect(QRectF(0, 0, pixels, pixels), pixels * 0.22, pixels * 0.22);
        painter.setBrush(Qt::white);
        painter.drawEllipse(QRectF(pixels * 0.3, pixels * 0.3, pixels * 0.4, pixels * 0.4));
        return image;
    }

    QHash<QString, QColor> known;
    mutable std::atomic<int> calls = 0;
};

} // namespace nubo
