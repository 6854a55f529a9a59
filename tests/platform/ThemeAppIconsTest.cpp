// Icons from a temporary icon theme: the entry's name found at the right size in the user's theme
// or what it inherits, a full path taken as it is, the generic icon for what names none.

#include "platform/linux/ThemeAppIcons.h"

#include "support/FixtureFiles.h"

#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace nubo;
using namespace Qt::StringLiterals;

namespace {

// A square PNG of one colour, `side` pixels wide, at `path`.
QString picture(const QString& path, int side, QColor colour)
{
    test::makeDir(path.section(u'/', 0, -2));
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(colour);
    EXPECT_TRUE(image.save(path, "PNG")) << path.toStdString();
    return path;
}

} // namespace

TEST(ThemeAppIcons, AnEntrysIconComesFromTheThemeAtTheClosestSizeAndTheGenericOneStandsInForNone)
{
    QTemporaryDir root;
    const QString icons = root.path() + u"/icons"_s, entries = root.path() + u"/applications/"_s;
    test::writeBytes(icons + u"/Tema/index.theme"_s, "[Icon Theme]\nName=Tema\nInherits=Base\n");
    picture(icons + u"/Tema/16x16/apps/org.example.Tool.png"_s, 16, Qt::red);
    picture(icons + u"/Tema/64x64/apps/org.example.Tool.png"_s, 64, Qt::green);
    picture(icons + u"/Base/apps/48/inherited.png"_s, 48, Qt::blue);
    picture(icons + u"/hicolor/32x32/apps/application-x-executable.png"_s, 32, Qt::gray);
    const QString own = picture(root.path() + u"/own picture.png"_s, 20, Qt::yellow);
    for (const auto& [id, icon] : {std::pair{"tool", "org.example.Tool"}, {"inherited", "inherited.png"},
                                   {"own", ""}, {"none", ""}, {"climbing", "../Tema/16x16/apps/org.example.Tool"}})
        test::writeBytes(entries + QString::fromUtf8(id) + u".desktop"_s,
                         "[Desktop Entry]\nName=X\nIcon=" + (qstrcmp(id, "own") == 0 ? own.toUtf8() : QByteArray(icon)) + '\n');

    const ThemeAppIcons theme({icons}, {}, u"Tema"_s);
    const struct
    {
        const char* entry;
        int pixels;
        QColor colour;
    } cases[] = {
        {"tool", 32, Qt::green},   // the 64 px picture drawn smaller, not the 16 px one drawn larger
        {"tool", 96, Qt::green},   // nothing larger: the largest there is
        {"tool", 16, Qt::red},
        {"inherited", 24, Qt::blue},
        {"own", 40, Qt::yellow},
        {"none", 32, Qt::gray},
        {"climbing", 32, Qt::gray}, // a name that would leave the theme is no name
    };
    for (const auto& [entry, pixels, colour] : cases) {
        const QImage image = theme.icon(entries + QString::fromUtf8(entry) + u".desktop"_s, pixels);
        EXPECT_EQ(std::tuple(image.size(), image.pixelColor(pixels / 2, pixels / 2)), std::tuple(QSize(pixels, pixels), colour))
            << entry << " at " << pixels;
    }
    // A program that is no entry has the generic icon; without one in any theme, nothing at all.
    EXPECT_EQ(theme.icon(root.path() + u"/bin/tool"_s, 32).pixelColor(1, 1), QColor(Qt::gray));
    EXPECT_TRUE(ThemeAppIcons({root.path() + u"/nowhere"_s}, {}, u"Tema"_s).icon(entries + u"tool.desktop"_s, 32).isNull());
}
