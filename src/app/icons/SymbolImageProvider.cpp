#include "app/icons/SymbolImageProvider.h"

#include "platform/SymbolImages.h"

#include <QColor>
#include <QPainter>
#include <QUrlQuery>

namespace nubo {

SymbolImageProvider::SymbolImageProvider(std::unique_ptr<SymbolImages> images)
    : QQuickImageProvider(QQuickImageProvider::Image), m_images(std::move(images))
{
}

SymbolImageProvider::~SymbolImageProvider() = default;

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QSize target = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(32, 32);
    // "name?tint=#rrggbb" draws the symbol in one colour, as SF Symbols are drawn in a tint.
    const qsizetype query = id.indexOf(QLatin1Char('?'));
    const QString symbol = query < 0 ? id : id.left(query);
    QImage image = m_images->render(symbol, target);
    if (query >= 0) {
        const QString tint = QUrlQuery(id.mid(query + 1)).queryItemValue(QStringLiteral("tint"));
        const QColor colour = QColor::fromString(tint);
        if (colour.isValid() && !image.isNull()) {
            image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
            QPainter painter(&image);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), colour);
        }
    }
    if (size)
        *size = image.size();
    return image;
}

} // namespace nubo
