// The icon provider over a scripted platform: the asked size, one platform call per path and
// size, a stand-in pixel where the platform has nothing, and paths that survive the address.

#include "app/icons/AppIconProvider.h"
#include "core/files/NativePath.h"
#include "models/text/IconSource.h"
#include "platform/fake/FakeAppIcons.h"

#include <gtest/gtest.h>

using namespace nubo;
using namespace Qt::StringLiterals;

TEST(AppIconProvider, DrawsEachPathOnceAtTheAskedSizeAndAOnePixelStandInWhereThereIsNone)
{
    const auto icons = std::make_shared<FakeAppIcons>();
    const QString odd = NativePath::decode("/Apps/it's \"#1\" 100% ?x=\xff.app");
    icons->known.insert(odd, Qt::red);
    AppIconProvider provider(icons);
    const auto request = [&provider](const QString& path, QSize asked) {
        QSize reported;
        const QImage image =
            provider.requestImage(IconSource::of(path).mid(u"image://appicon/"_s.size()), &reported, asked);
        EXPECT_EQ(reported, image.size());
        return image;
    };
    EXPECT_EQ(std::tuple(request(odd, {40, 40}).size(), request(odd, {40, 40}).pixelColor(4, 20)),
              std::tuple(QSize(40, 40), QColor(Qt::red)));
    EXPECT_EQ(icons->calls.load(), 1);
    EXPECT_EQ(request(odd, {}).size(), QSize(64, 64));
    EXPECT_EQ(request(u"/Apps/None.app"_s, {32, 32}).size(), QSize(1, 1));
    EXPECT_EQ(request(u"/Apps/None.app"_s, {32, 32}).size(), QSize(1, 1));
    EXPECT_EQ(icons->calls.load(), 3);
    // An address that names no path never reaches the platform.
    QSize reported;
    EXPECT_EQ(provider.requestImage(u"not base64!"_s, &reported, {32, 32}).size(), QSize(1, 1));
    EXPECT_EQ(icons->calls.load(), 3);
}
