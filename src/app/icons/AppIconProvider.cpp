#include "app/icons/AppIconProvider.h"

#include "models/text/IconSource.h"
#include "platform/AppIcons.h"

#include <algorithm>

namespace nubo {

namespace {

// Enough for every row of every pane at two sizes; past it the oldest pictures are let go all
// at once, which costs a redraw, not a leak.
constexpr qsizetype kCachedPictures = 512;
constexpr int kDefaultPixels = 64;

} // namespace

AppIconProvider::AppIconProvider(std::shared_ptr<const AppIcons> icons)
    : QQuickImageProvider(QQuickImageProvider::Image, QQmlImageProviderBase::ForceAsynchronousImageLoading),
      m_icons(std::move(icons))
{
}

QImage AppIconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const int pixels = requestedSize.isValid() && !requestedSize.isEmpty()
                           ? std::max(requestedSize.width(), requestedSize.height())
                           : kDefaultPixels;
    const QString path = IconSource::pathOf(id);
    const QString key = QString::number(pixels) + QLatin1Char(':') + path;
    QImage image;
    bool cached = false;
    {
        const std::lock_guard lock(m_lock);
        const auto found = m_cache.constFind(key);
        cached = found != m_cache.cend();
        if (cached)
            image = *found;
    }
    if (!cached && !path.isEmpty()) {
        image = m_icons->icon(path, pixels);
        const std::lock_guard lock(m_lock);
        if (m_cache.size() >= kCachedPictures)
            m_cache.clear();
        m_cache.insert(key, image);
    }
    if (image.isNull()) {
        image = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
    }
    if (size)
        *size = image.size();
    return image;
}

} // namespace nubo
