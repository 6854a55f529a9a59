// The Mac bundle is assembled on a Mac only, but its Info.plist and its icon come from portable
// steps (CMake and a Python script). Checking their output here catches a broken template or a
// broken drawing before anyone builds on a Mac.
#include "core/plist/PropertyList.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QVariant>

#include <tuple>
#include <utility>

using namespace nubo;

namespace {

QVariantMap bundleList(const char* name)
{
    return PropertyList::readDictionary(QStringLiteral(NUBO_TEST_BUNDLE_DIR "/") + QString::fromLatin1(name));
}

// Runs the icon script with `arguments`; the exit code, or -1 when it could not run or hung.
int drawIcon(const QStringList& arguments)
{
    QProcess script;
    script.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    script.start(QStringLiteral(NUBO_TEST_PYTHON),
                 QStringList{QStringLiteral(NUBO_TEST_ICON_SCRIPT)} + arguments);
    if (!script.waitForFinished(100'000)) {
        script.kill();
        script.waitForFinished();
        return -1;
    }
    return script.exitStatus() == QProcess::NormalExit ? script.exitCode() : -1;
}

} // namespace

// The icon resource the bundle set-up copies in is Nubo.icns. Without a principal class AppKit
// does not start as an application, and Qt draws blurred on Retina screens without the
// high-resolution flag. The Dock icon comes and goes at run time, so the list must not hide it for
// good; without a feed there is no half-configured updater, and a feed address with "&" and a key
// with "<" are escaped so that the list still parses.
TEST(MacBundle, InfoListDescribesAnUnsandboxedUtilityForMacOs13WithAnOptionalUpdateFeed)
{
    const QVariantMap info = bundleList("Plain.plist");
    const std::pair<const char*, QVariant> entries[] = {
        {"CFBundleExecutable", QStringLiteral("nubo")},
        {"CFBundleIdentifier", QStringLiteral("app.nubo.Nubo")},
        {"CFBundlePackageType", QStringLiteral("APPL")},
        {"CFBundleShortVersionString", QStringLiteral(NUBO_TEST_PROJECT_VERSION)},
        {"CFBundleVersion", QStringLiteral("42")},
        {"LSMinimumSystemVersion", QStringLiteral("13.0")},
        {"CFBundleIconFile", QStringLiteral("Nubo")},
        {"NSPrincipalClass", QStringLiteral("NSApplication")},
        {"NSHighResolutionCapable", true}};
    for (const auto& [key, value] : entries)
        EXPECT_EQ(info.value(QString::fromLatin1(key)), value) << key;
    for (const char* absent :
         {"LSUIElement", "LSBackgroundOnly", "SUFeedURL", "SUPublicEDKey", "com.apple.security.app-sandbox"})
        EXPECT_FALSE(info.contains(QString::fromLatin1(absent))) << absent;

    const QVariantMap updates = bundleList("Updates.plist");
    EXPECT_EQ(updates.value(QStringLiteral("SUFeedURL")).toString(),
              QStringLiteral("https://updates.example/nubo/appcast.xml?channel=stable&arch=arm64"));
    EXPECT_EQ(updates.value(QStringLiteral("SUPublicEDKey")).toString(), QStringLiteral("pZ3v+/8<=>"));
    EXPECT_EQ(updates.value(QStringLiteral("SUEnableAutomaticChecks")), QVariant(true));
}

// iconutil accepts only these names, each with exactly this pixel size; the rounded square leaves
// the corners clear and covers the middle; a white cloud sits in a blue square. An impossible size
// or no output writes nothing.
TEST(MacBundle, IconScriptFillsEveryIconsetSlotAndRefusesAnImpossibleSize)
{
    if (QStringLiteral(NUBO_TEST_PYTHON).isEmpty())
        GTEST_SKIP() << "no python3 on this machine";
    QTemporaryDir dir;
    const QDir iconset(dir.filePath(QStringLiteral("Nubo.iconset")));
    ASSERT_EQ(drawIcon({QStringLiteral("--iconset"), iconset.path()}), 0);
    const std::pair<const char*, int> iconFiles[] = {
        {"icon_16x16.png", 16},       {"icon_16x16@2x.png", 32},    {"icon_32x32.png", 32},
        {"icon_32x32@2x.png", 64},    {"icon_128x128.png", 128},    {"icon_128x128@2x.png", 256},
        {"icon_256x256.png", 256},    {"icon_256x256@2x.png", 512}, {"icon_512x512.png", 512},
        {"icon_512x512@2x.png", 1024}};
    for (const auto& [name, pixels] : iconFiles) {
        const QImage image(iconset.filePath(QString::fromLatin1(name)));
        EXPECT_EQ(image.size(), QSize(pixels, pixels)) << name;
        EXPECT_TRUE(image.hasAlphaChannel()) << name;
        EXPECT_EQ(std::tuple(qAlpha(image.pixel(0, 0)), qAlpha(image.pixel(pixels - 1, 0)),
                             qAlpha(image.pixel(pixels / 2, pixels / 2))),
                  std::tuple(0, 0, 255))
            << name;
    }
    EXPECT_EQ(iconset.entryList(QDir::Files).size(), qsizetype(std::size(iconFiles))) << "half-written files";
    const QImage large(iconset.filePath(QStringLiteral("icon_512x512@2x.png")));
    const QColor cloud = large.pixelColor(512, 512);
    const QColor sky = large.pixelColor(512, 860);
    EXPECT_TRUE(cloud.red() > 200 && cloud.green() > 200);
    EXPECT_GT(sky.blue(), sky.red() + 80);

    const QStringList output{QStringLiteral("--output"), dir.filePath(QStringLiteral("icon.png"))};
    EXPECT_NE(drawIcon(QStringList{QStringLiteral("--size"), QStringLiteral("0")} + output), 0);
    EXPECT_NE(drawIcon(QStringList{QStringLiteral("--size"), QStringLiteral("-3")} + output), 0);
    EXPECT_NE(drawIcon({}), 0);
    EXPECT_FALSE(QFile::exists(output[1]));
}
