// SF Symbols drawn by AppKit into a QImage. The symbol is asked at a point size that suits the
// box, drawn into a bitmap context that writes straight into the image's pixels, and reduced to
// one colour: black with the symbol's coverage as alpha. That is what the image provider tints
// ("?tint=") and what the menu bar wants from a template icon (QIcon::setIsMask). Where the
// symbol should go is decided by SymbolGeometry; only the drawing lives here.
#include "platform/SymbolGeometry.h"
#include "platform/SymbolImages.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

namespace nubo {

namespace {

class MacSymbolImages final : public SymbolImages
{
public:
    // The provider may call this from Qt Quick's image-loading threads: nothing here touches a
    // window or NSApp, the graphics context is per thread, and the pool drains each call.
    QImage render(const QString& symbol, const QSize& size) const override
    {
        const QSize box = size.isValid() && !size.isEmpty() ? size : QSize(32, 32);
        @autoreleasepool {
            // macOS 11+: nil for a name this system's SF Symbols does not know (a few symbols
            // the views use arrived in later releases), which draws the neutral glyph instead.
            NSImage* named = [NSImage imageWithSystemSymbolName:symbol.toNSString() accessibilityDescription:nil];
            if (named == nil)
                return neutralSymbolImage(box);
            NSImageSymbolConfiguration* configuration =
                [NSImageSymbolConfiguration configurationWithPointSize:SymbolGeometry::pointSize(box)
                                                                weight:NSFontWeightRegular];
            NSImage* sized = [named imageWithSymbolConfiguration:configuration];
            if (sized == nil)
                sized = named;
            const QRectF target =
                SymbolGeometry::placement(QSizeF(sized.size.width, sized.size.height), box);
            if (target.isEmpty())
                return neutralSymbolImage(box);

            QImage image(box, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            // Premultiplied alpha first in a host-order 32-bit word is exactly QImage's
            // ARGB32_Premultiplied layout, so the context draws into the image's own memory.
            CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
            const uint32_t layout = static_cast<uint32_t>(kCGImageAlphaPremultipliedFirst)
                                    | static_cast<uint32_t>(kCGBitmapByteOrder32Host);
            CGContextRef context = CGBitmapContextCreate(image.bits(), size_t(box.width()), size_t(box.height()), 8,
                                                         size_t(image.bytesPerLine()), space, layout);
            CGColorSpaceRelease(space);
            if (context == nullptr)
                return neutralSymbolImage(box);

            [NSGraphicsContext saveGraphicsState];
            NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context flipped:NO];
            // A bitmap context keeps its first row at the top of the picture but counts y upwards,
            // so the top-down placement is mirrored here.
            const NSRect rect = NSMakeRect(target.x(), box.height() - target.y() - target.height(),
                                           target.width(), target.height());
            [sized drawInRect:rect fromRect:NSZeroRect operation:NSCompositingOperationSourceOver fraction:1.0];
            [NSColor.blackColor setFill];
            NSRectFillUsingOperation(NSMakeRect(0, 0, box.width(), box.height()), NSCompositingOperationSourceIn);
            [NSGraphicsContext restoreGraphicsState];
            CGContextRelease(context);
            return image;
        }
    }
};

} // namespace

std::unique_ptr<SymbolImages> makeSymbolImages()
{
    return std::make_unique<MacSymbolImages>();
}

} // namespace nubo
