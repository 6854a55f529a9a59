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

bool havePython()
{
    return !QStringLiteral(NUBO_TEST_PYTHON).isEmpty();
}

} // namespace

TEST(MacBundle, InfoListDescribesAnUnsandboxedUtilityForMacOs13)
{
    const QVariantMap info = bundleList("Plain.plist");
    ASSERT_FALSE(info.isEmpty()) << "the written Info.plist does not parse";

    // The icon resource the bundle set-up copies in is Nubo.icns. Without a principal class AppKit
    // does not start as an application, and Qt draws blurred on Retina screens without the
    // high-resolution flag.
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

    // The Dock icon comes and goes at run time, so the list must not hide it for good; and
    // without a feed there must be no half-configured updater.
    for (const char* absent : {"LSUIElement", "LSBackgroundOnly", "SUFeedURL", "SUPublicEDKey",
                               "com.apple.security.app-sandbox"})
        EXPECT_FALSE(info.contains(QString::fromLatin1(absent))) << absent;
}

TEST(MacBundle, UpdateFeedWithAQueryKeepsTheListWellFormed)
{
    const QVariantMap info = bundleList("Updates.plist");
    ASSERT_FALSE(info.isEmpty()) << "an address with '&' must be escaped in the XML";
    EXPECT_EQ(info.value(QStringLiteral("SUFeedURL")).toString(),
              QStringLiteral("https://updates.example/nubo/appcast.xml?channel=stable&arch=arm64"));
    EXPECT_EQ(info.value(QStringLiteral("SUPublicEDKey")).toString(), QStringLiteral("pZ3v+/8<=>"));
    EXPECT_EQ(info.value(QStringLiteral("SUEnableAutomaticChecks")), QVariant(true));
    EXPECT_EQ(info.value(QStringLiteral("CFBundleExecutable")).toString(), QStringLiteral("nubo"));
}

TEST(MacBundle, IconScriptFillsEveryIconsetSlotWithTheRightSize)
{
    if (!havePython())
        GTEST_SKIP() << "no python3 on this machine";
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString iconset = dir.filePath(QStringLiteral("Nubo.iconset"));
    ASSERT_EQ(drawIcon({QStringLiteral("--iconset"), iconset}), 0);

    // iconutil accepts only these names, each with exactly this pixel size.
    const std::pair<const char*, int> iconFiles[] = {
        {"icon_16x16.png", 16},         {"icon_16x16@2x.png", 32},   {"icon_32x32.png", 32},
        {"icon_32x32@2x.png", 64},      {"icon_128x128.png", 128},   {"icon_128x128@2x.png", 256},
        {"icon_256x256.png", 256},      {"icon_256x256@2x.png", 512}, {"icon_512x512.png", 512},
        {"icon_512x512@2x.png", 1024}};
    for (const auto& [name, pixels] : iconFiles) {
        SCOPED_TRACE(name);
        const QImage image(QDir(iconset).filePath(QString::fromLatin1(name)));
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), QSize(pixels, pixels));
        EXPECT_TRUE(image.hasAlphaChannel());
        // The rounded square leaves the corners clear and covers the middle.
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(image.pixel(pixels - 1, 0)), 0);
        EXPECT_EQ(qAlpha(image.pixel(pixels / 2, pixels / 2)), 255);
    }
    EXPECT_EQ(QDir(iconset).entryList(QDir::Files).size(), qsizetype(std::size(iconFiles)))
        << "no half-written files are left behind";

    // A white cloud in the middle of a blue square.
    const QImage large(QDir(iconset).filePath(QStringLiteral("icon_512x512@2x.png")));
    const QColor cloud = large.pixelColor(512, 512);
    const QColor sky = large.pixelColor(512, 860);
    EXPECT_GT(cloud.red(), 200);
    EXPECT_GT(cloud.green(), 200);
    EXPECT_GT(sky.blue(), sky.red() + 80);
}

TEST(MacBundle, IconScriptRefusesAnImpossibleSizeAndWritesNothing)
{
    if (!havePython())
        GTEST_SKIP() << "no python3 on this machine";
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString output = dir.filePath(QStringLiteral("icon.png"));
    for (const QStringList& arguments : {QStringList{QStringLiteral("--size"), QStringLiteral("0")},
                                         QStringList{QStringLiteral("--size"), QStringLiteral("-3")}})
        EXPECT_NE(drawIcon(arguments + QStringList{QStringLiteral("--output"), output}), 0) << arguments[1].toStdString();
    EXPECT_NE(drawIcon({}), 0);
    EXPECT_FALSE(QFile::exists(output));
}
