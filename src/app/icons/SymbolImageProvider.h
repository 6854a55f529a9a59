#pragma once

#include <QQuickImageProvider>

#include <memory>

namespace nubo {

class SymbolImages;

/// Serves image://symbol/<SF Symbol name> to the views through the platform's symbol drawer.
class SymbolImageProvider final : public QQuickImageProvider
{
public:
    explicit SymbolImageProvider(std::unique_ptr<SymbolImages> images);
    ~SymbolImageProvider() override;

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    std::unique_ptr<SymbolImages> m_images;
};

} // namespace nubo
