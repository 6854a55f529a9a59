// The SF Symbols backend: for now every symbol draws the neutral glyph; the real AppKit drawing
// (NSImage imageWithSystemSymbolName:accessibilityDescription:) arrives with the macOS build.
#include "platform/SymbolImages.h"

namespace nubo {

namespace {

class MacSymbolImages final : public SymbolImages
{
public:
    QImage render(const QString&, const QSize& size) const override { return neutralSymbolImage(size); }
};

} // namespace

std::unique_ptr<SymbolImages> makeSymbolImages()
{
    return std::make_unique<MacSymbolImages>();
}

} // namespace nubo
