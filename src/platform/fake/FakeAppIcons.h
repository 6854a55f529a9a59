#pragma once

#include "platform/AppIcons.h"

#include <QColor>
#include <QHash>

#include <atomic>

namespace nubo {

/// Icons for tests: a square of one colour at the asked size for each path in `known`, nothing
/// for any other; counts the calls, which may come from any thread. Fill `known` first.
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
        image.fill(*colour);
        return image;
    }

    QHash<QString, QColor> known;
    mutable std::atomic<int> calls = 0;
};

} // namespace nubo
