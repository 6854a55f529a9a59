#include "app/icons/SymbolImageProvider.h"

#include "platform/SymbolImages.h"

namespace nubo {

SymbolImageProvider::SymbolImageProvider(std::unique_ptr<SymbolImages> images)
    : QQuickImageProvider(QQuickImageProvider::Image), m_images(std::move(images))
{
}

SymbolImageProvider::~SymbolImageProvider() = default;

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QSize target = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(32, 32);
    QImage image = m_images->render(id, target);
    if (size)
        *size = image.size();
    return image;
}

} // namespace nubo
