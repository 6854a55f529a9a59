#include "platform/linux/ThemeSymbolImages.h"

#include "core/format/FileKind.h"

#include <gtest/gtest.h>

#include <QIcon>

#include <algorithm>

using namespace nubo;

namespace {

bool hasInk(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
    return false;
}

} // namespace

// Every symbol the frame and the file kinds show has an installed theme icon; an unknown or empty
// symbol draws the neutral glyph, at the size asked.
TEST(ThemeSymbolImages, EverySymbolTheFrameShowsHasAnInstalledThemeIconAndOthersTheNeutralGlyph)
{
    ThemeSymbolImages images;
    QStringList symbols;
    for (const char* name : {"sparkles", "circle.hexagongrid.fill", "bubbles.and.sparkles.fill", "square.stack.3d.up.fill",
                             "gauge.with.dots.needle.67percent", "speedometer", "internaldrive", "wind",
                             "checkmark.circle.fill", "exclamationmark.triangle.fill"})
        symbols << QString::fromLatin1(name);
    for (FileKind kind : FileKinds::all)
        symbols << FileKinds::symbol(kind);
    for (const QString& symbol : symbols) {
        const QStringList names = ThemeSymbolImages::themeNames(symbol);
        EXPECT_TRUE(std::any_of(names.begin(), names.end(), [](const QString& n) { return QIcon::hasThemeIcon(n); }))
            << symbol.toStdString() << " has no icon in theme " << QIcon::themeName().toStdString();
        EXPECT_TRUE(hasInk(images.render(symbol, QSize(24, 24)))) << symbol.toStdString();
    }
    const QImage unknown = images.render(QStringLiteral("no.such.symbol"), QSize(20, 20));
    EXPECT_EQ(unknown.size(), QSize(20, 20));
    EXPECT_TRUE(hasInk(unknown) && hasInk(images.render(QString(), QSize())));
}
