// The Mac bundle's Info.plist and icon come from portable steps, checked here before a Mac build.
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

// Without a principal class AppKit starts no application, without the flag Qt draws blurred; the Dock
// icon comes and goes at run time; "&" and "<" in the feed settings are escaped so the list parses.
TEST(MacBundle, InfoListDescribesAnUnsandboxedUtilityForMacOs13WithAnOptionalUpdateFeed)
{
    const QVariantMap info = bundleList("Plain.plist");
    const std::pair<const char*, QVariant> entries[] = {
        {"CFBundleExecutable", QStringLiteral("nubo")}, {"CFBundleIdentifier", QStringLiteral("app.nubo.Nubo")},
        {"CFBundlePackageType", QStringLiteral("APPL")}, {"CFBundleVersion", QStringLiteral("42")},
        {"CFBundleShortVersionString", QStringLiteral(NUBO_TEST_PROJECT_VERSION)},
        {"LSMinimumSystemVersion", QStringLiteral("13.0")}, {"CFBundleIconFile", QStringLiteral("Nubo")},
        {"NSPrincipalClass", QStringLiteral("NSApplication")}, {"NSHighResolutionCapable", true}};
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

// iconutil accepts only these names and pixel sizes; corners clear, a white cloud on blue; an
// impossible size or no output writes nothing.
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
        EXPECT_EQ(std::tuple(image.size(), image.hasAlphaChannel(), qAlpha(image.pixel(0, 0)),
                             qAlpha(image.pixel(pixels - 1, 0)), qAlpha(image.pixel(pixels / 2, pixels / 2))),
                  std::tuple(QSize(pixels, pixels), true, 0, 0, 255))
            << name;
    }
    EXPECT_EQ(iconset.entryList(QDir::Files).size(), qsizetype(std::size(iconFiles))) << "half-written files";
    const QImage large(iconset.filePath(QStringLiteral("icon_512x512@2x.png")));
    const QColor cloud = large.pixelColor(512, 512);
    const QColor sky = large.pixelColor(512, 860);
    EXPECT_TRUE(cloud.red() > 200 && cloud.green() > 200 && sky.blue() > sky.red() + 80);

    const QString output = dir.filePath(QStringLiteral("icon.png"));
    for (const QString& size : {QStringLiteral("0"), QStringLiteral("-3")})
        EXPECT_NE(drawIcon({QStringLiteral("--size"), size, QStringLiteral("--output"), output}), 0);
    EXPECT_NE(drawIcon({}), 0);
    EXPECT_FALSE(QFile::exists(output));
}
