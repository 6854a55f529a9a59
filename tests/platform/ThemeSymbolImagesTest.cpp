#include "platform/linux/ThemeSymbolImages.h"

#include "core/format/FileKind.h"

#include <gtest/gtest.h>

#include <QIcon>

using namespace nubo;

namespace {

// Whether any pixel of the image is not fully transparent.
bool hasInk(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
        }
    }
    return false;
}

} // namespace

TEST(ThemeSymbolImages, EverySymbolTheFrameShowsHasAnInstalledThemeIcon)
{
    ThemeSymbolImages images;
    QStringList symbols = {QStringLiteral("sparkles"), QStringLiteral("circle.hexagongrid.fill"),
                           QStringLiteral("bubbles.and.sparkles.fill"), QStringLiteral("square.stack.3d.up.fill"),
                           QStringLiteral("gauge.with.dots.needle.67percent"), QStringLiteral("speedometer"),
                           QStringLiteral("internaldrive"), QStringLiteral("wind"),
                           QStringLiteral("checkmark.circle.fill"), QStringLiteral("exclamationmark.triangle.fill")};
    for (FileKind kind : FileKinds::all)
        symbols << FileKinds::symbol(kind);

    for (const QString& symbol : symbols) {
        const QStringList names = ThemeSymbolImages::themeNames(symbol);
        ASSERT_FALSE(names.isEmpty()) << symbol.toStdString();
        const bool installed = std::any_of(names.begin(), names.end(), [](const QString& n) {
            return QIcon::hasThemeIcon(n);
        });
        EXPECT_TRUE(installed) << symbol.toStdString() << " has no icon in theme " << QIcon::themeName().toStdString();
        const QImage image = images.render(symbol, QSize(24, 24));
        EXPECT_FALSE(image.isNull());
        EXPECT_TRUE(hasInk(image)) << symbol.toStdString();
    }
}

TEST(ThemeSymbolImages, UnknownSymbolDrawsTheNeutralGlyph)
{
    ThemeSymbolImages images;
    const QImage image = images.render(QStringLiteral("no.such.symbol"), QSize(20, 20));
    EXPECT_EQ(image.size(), QSize(20, 20));
    EXPECT_TRUE(hasInk(image));
    EXPECT_TRUE(hasInk(images.render(QString(), QSize())));
}
