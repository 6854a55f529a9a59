// The workspace's icon for a file, drawn by AppKit into a QImage. NSWorkspace's icon lookup may
// be called from any thread, so the image provider's loading threads call this directly.
#include "platform/AppIcons.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

namespace nubo {

namespace {

class MacAppIcons final : public AppIcons
{
public:
    QImage icon(const QString& path, int pixels) const override
    {
        if (pixels <= 0 || path.isEmpty())
            return {};
        @autoreleasepool {
            NSImage* picture = [[NSWorkspace sharedWorkspace] iconForFile:path.toNSString()];
            if (picture == nil)
                return {};
            QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            // Premultiplied alpha first in a host-order word is QImage's ARGB32_Premultiplied, so
            // the context draws straight into the image's memory.
            CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
            const uint32_t layout = static_cast<uint32_t>(kCGImageAlphaPremultipliedFirst)
                                    | static_cast<uint32_t>(kCGBitmapByteOrder32Host);
            CGContextRef context = CGBitmapContextCreate(image.bits(), size_t(pixels), size_t(pixels), 8,
                                                         size_t(image.bytesPerLine()), space, layout);
            CGColorSpaceRelease(space);
            if (context == nullptr)
                return {};
            [NSGraphicsContext saveGraphicsState];
            NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context flipped:NO];
            // The icon holds pictures at several sizes; drawing into the square picks the best.
            [picture drawInRect:NSMakeRect(0, 0, pixels, pixels)
                       fromRect:NSZeroRect
                      operation:NSCompositingOperationSourceOver
                       fraction:1.0];
            [NSGraphicsContext restoreGraphicsState];
            CGContextRelease(context);
            return image;
        }
    }
};

} // namespace

std::unique_ptr<AppIcons> makeAppIcons()
{
    return std::make_unique<MacAppIcons>();
}

} // namespace nubo
