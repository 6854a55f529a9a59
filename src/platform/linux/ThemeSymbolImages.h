#pragma once

#include "platform/SymbolImages.h"

#include <QStringList>

namespace nubo {

/// Stands freedesktop icon-theme icons in for SF Symbols.
class ThemeSymbolImages final : public SymbolImages
{
public:
    ThemeSymbolImages();
    [[nodiscard]] QImage render(const QString& symbol, const QSize& size) const override;

    /// Theme icon names tried for a symbol, best first; empty for a symbol with no counterpart.
    [[nodiscard]] static QStringList themeNames(const QString& symbol);
};

} // namespace nubo
