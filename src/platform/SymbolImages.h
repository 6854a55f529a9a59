#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

namespace nubo {

/// Draws an icon named by its SF Symbol name ("internaldrive", "sparkles"). macOS draws the real
/// symbol; elsewhere a matching icon of the desktop's icon theme stands in, and a neutral glyph
/// when nothing matches, so a view never shows a hole. Interface thread only: the backends draw
/// through the platform's icon and image services, which belong to that thread.
class SymbolImages
{
public:
    virtual ~SymbolImages() = default;
    [[nodiscard]] virtual QImage render(const QString& symbol, const QSize& size) const = 0;
};

/// The backend of the platform the program was built for.
[[nodiscard]] std::unique_ptr<SymbolImages> makeSymbolImages();

/// The glyph shown for a symbol that no backend can draw: a soft ring.
[[nodiscard]] QImage neutralSymbolImage(const QSize& size);

} // namespace nubo
